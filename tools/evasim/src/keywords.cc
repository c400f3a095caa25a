#include "keywords.h"

#include "text_util.h"
#include "tokenizer.h"

namespace evasim {

namespace {

// One command of the simulated SSSU: verb, object, where its options start and which they are.
// Option words that take no value and KEY= keys share one list, as they share one place.
struct Form {
    const char *verb;
    const char *object;
    size_t firstOption;
    std::vector<const char *> options;
};

const std::vector<const char *> kVerbs{"ADD", "DELETE", "EXIT", "FIND", "LS", "REDISCOVER", "REFRESH", "SELECT", "SET"};

const std::vector<Form> &forms()
{
    static const std::vector<Form> list{
        {"ADD", "COPY", 3, {"VDISK", "CONTAINER", "REDUNDANCY", "DISK_GROUP"}},
        {"ADD", "LUN", 3, {"HOST", "VDISK"}},
        {"ADD", "SNAPSHOT", 3, {"VDISK", "ALLOCATION_POLICY", "REDUNDANCY", "WORLD_WIDE_LUN_NAME"}},
        {"ADD", "VDISK", 3, {"SIZE", "REDUNDANCY", "DISK_GROUP", "WORLD_WIDE_LUN_NAME"}},
        {"DELETE", "LUN", 3, {}},
        {"DELETE", "VDISK", 3, {}},
        {"FIND", "VDISK", 2, {"LUNWWID", "XML"}},
        {"LS", "CELL", 0, {}},
        {"LS", "DISK_GROUP", 0, {}},
        {"LS", "DR_GROUP", 0, {}},
        {"LS", "HOST", 0, {}},
        {"LS", "SYSTEM", 0, {}},
        {"LS", "VDISK", 0, {}},
        {"SELECT", "CELL", 3, {}},
        {"SELECT", "MANAGER", 3, {"USERNAME", "PASSWORD"}},
        {"SELECT", "SYSTEM", 3, {}},
        {"SET", "DR_GROUP", 3, {"SUSPEND", "NOSUSPEND"}},
        {"SET", "OPTIONS", 2, {"NOCOMMAND_DELAY", "COMMAND_DELAY", "DISPLAY_WIDTH", "ON_ERROR"}},
        {"SET", "VDISK", 3, {"CHANGE_INTO_CONTAINER", "NAME", "WORLD_WIDE_LUN_NAME", "WRITECACHE", "COMMENT"}},
    };
    return list;
}

// Writes out one token against its choices; false when it is ambiguous.
bool expandToken(Token &t, const std::vector<const char *> &choices, size_t &column)
{
    if (t.kind == Token::Quoted) {
        return true;
    }
    std::string keyword;
    const Keywords::Match m = Keywords::match(t.text, choices, keyword);
    if (m == Keywords::Match::Ambiguous) {
        column = t.column;
        return false;
    }
    if (m == Keywords::Match::One) {
        t.text = keyword;
    }
    return true;
}

}  // namespace

Keywords::Match Keywords::match(const std::string &word, const std::vector<const char *> &choices, std::string &keyword)
{
    if (word.empty()) {
        return Match::None;
    }
    Match m = Match::None;
    for (const char *c : choices) {
        if (iequals(word, c)) {
            keyword = c;
            return Match::One;
        }
        if (istartsWith(c, word)) {
            m = m == Match::None ? Match::One : Match::Ambiguous;
            keyword = c;
        }
    }
    return m;
}

bool Keywords::expand(std::vector<Token> &t, size_t &column)
{
    if (t.empty() || !expandToken(t[0], kVerbs, column)) {
        return t.empty();
    }
    std::vector<const char *> objects;
    for (const Form &f : forms()) {
        if (t[0].is(f.verb)) {
            objects.push_back(f.object);
        }
    }
    if (t.size() < 2 || objects.empty()) {
        return true;
    }
    // "OPTION" is the same keyword as "OPTIONS" and "COMMENTS" as "COMMENT".
    if (t[0].is("SET") && t[1].is("OPTION")) {
        t[1].text = "OPTIONS";
    }
    if (!expandToken(t[1], objects, column)) {
        return false;
    }
    for (const Form &f : forms()) {
        if (!t[0].is(f.verb) || !t[1].is(f.object)) {
            continue;
        }
        if (t[0].is("LS")) {
            // The listing's tail words; the name before them is left alone.
            for (size_t i = t.size(); i > 2 && t[i - 1].kind == Token::Word; --i) {
                std::string keyword;
                if (Keywords::match(t[i - 1].text, {"FULL", "XML"}, keyword) != Match::One) {
                    break;
                }
                t[i - 1].text = keyword;
            }
            return true;
        }
        for (size_t i = f.firstOption; i < t.size(); ++i) {
            if (t[i].kind == Token::Assign && iequals(t[i].text, "COMMENTS")) {
                t[i].text = "COMMENT";
            }
            if (!expandToken(t[i], f.options, column)) {
                return false;
            }
        }
        return true;
    }
    return true;
}

}  // namespace evasim
