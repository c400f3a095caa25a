// The bundle against the code: every key the provider raises, every key of the documented
// list and every key errmsg forms from a result code is in both languages, each text is a
// valid MessageFormat pattern, German uses the same arguments as the default language, and
// each raise site passes as many arguments as its text has placeholders.
#include <gtest/gtest.h>

#include <unicode/locid.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>
#include <unicode/resbund.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cfierror.h"
#include "cfistringtool.h"

using namespace qorin_pdk_4_4;

namespace {

// The messages the provider raises, with the number of arguments its raise sites pass.
const std::map<std::string, int> kRaisedKeys = {
    {"MSG_ERROR_CLI_COMMAND_FAILED", 5},
    {"MSG_ERROR_CLI_NOT_FOUND", 2},
    {"MSG_ERROR_CLI_NOT_INSTALLED", 2},
    {"MSG_ERROR_DEPORT_HOST_INVALID", 3},
    {"MSG_ERROR_DR_GROUP_IS_NOT_SOURCED_ON_THIS_CELL_ERROR", 3},
    {"MSG_ERROR_DR_GROUP_MEMBER_CONDITION_ERROR", 2},
    {"MSG_ERROR_DR_GROUP_NAMES_DONT_MATCH", 3},
    {"MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_DETECTED", 2},
    {"MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_FOUND", 2},
    {"MSG_ERROR_DR_GROUP_OPERATIONAL_STATE_ERROR", 2},
    {"MSG_ERROR_DR_GROUP_SNAPCLONE_CREATION_FAILED", 1},
    {"MSG_ERROR_IMPORT_HOST_INVALID", 3},
    {"MSG_ERROR_IMPORT_LOCAL_HOST_INVALID", 3},
    {"MSG_ERROR_INITIALIZATION_FAILED", 0},
    {"MSG_ERROR_INVALID_SPLIT_TYPE", 1},
    {"MSG_ERROR_NO_ARRAYS_DISCOVERED", 0},
    {"MSG_ERROR_NO_CREDENTIALS", 1},
    {"MSG_ERROR_NO_DR_GROUP_PRESENT_FOR_VDISK", 1},
    {"MSG_ERROR_RESTORE_FROM_VSNAP_NOT_SUPPORTED", 2},
    {"MSG_ERROR_RESTORE_TO_VSNAP_NOT_SUPPORTED", 2},
    {"MSG_ERROR_SNAPCLONE_CREATION_FAILED", 1},
    {"MSG_ERROR_SNAPCLONE_OF_VSNAP_NOT_SUPPORTED", 1},
    {"MSG_ERROR_UDID_PARSING_EXCEPTION", 2},
    {"MSG_ERROR_UNHANDLED_EXEC_PIPE_EXCEPTION", 4},
    {"MSG_ERROR_UNHANDLED_FIERROR_EXCEPTION", 4},
    {"MSG_ERROR_UNHANDLED_INT_EXCEPTION", 3},
    {"MSG_ERROR_UNHANDLED_RUNTIME_EXCEPTION", 4},
    {"MSG_ERROR_VERIFY_FAILED_CREATE_CLONE_WITH_VSNAP_PRESENT_NOT_SUPPORTED", 3},
    {"MSG_ERROR_VERIFY_FAILED_OPERATIONS_ON_VSNAP_NOT_SUPPORTED", 3},
    {"MSG_ERROR_VERSION_CHECK", 1},
    {"MSG_ERROR_VSNAP_CREATION_FAILED", 1},
    {"MSG_ERROR_VSNAP_OF_VSNAP_NOT_SUPPORTED", 1},
};

// The results an entry can give; errmsg turns each into a key.
const int kResultCodes[] = {0, 1, 3, 4, 5, 6, 7, 21, 29, 30};

// Argument number -> how the text formats it ("" for plain text, "number" ...).
using Arguments = std::map<int, std::set<std::string>>;

struct Text {
    std::string utf8;
    Arguments arguments;
    bool valid = false;
};

std::string envOr(const char *name, const char *fallback)
{
    const char *value = getenv(name);
    return value != nullptr ? value : fallback;
}

Arguments argumentsOf(const icu::UnicodeString &pattern, bool &valid)
{
    Arguments out;
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    icu::MessagePattern parsed(pattern, &parseError, status);
    icu::MessageFormat format(pattern, icu::Locale::getRoot(), status);
    valid = U_SUCCESS(status);
    if (!valid) {
        return out;
    }
    for (int i = 0; i < parsed.countParts(); ++i) {
        const icu::MessagePattern::Part &part = parsed.getPart(i);
        if (part.getType() != UMSGPAT_PART_TYPE_ARG_NUMBER) {
            continue;
        }
        std::string style;
        if (i + 1 < parsed.countParts() && parsed.getPart(i + 1).getType() == UMSGPAT_PART_TYPE_ARG_TYPE) {
            const icu::MessagePattern::Part &type = parsed.getPart(i + 1);
            icu::UnicodeString name = pattern.tempSubString(type.getIndex(), type.getLength());
            name.toUTF8String(style);
        }
        out[part.getValue()].insert(style);
    }
    return out;
}

// The language's own table, without what it would take from root.
std::map<std::string, Text> bundle(const char *language)
{
    std::map<std::string, Text> out;
    std::string path = envOr("TAMLIN_BUILD_DIR", ".") + "/Messages/libtamlin";
    UErrorCode status = U_ZERO_ERROR;
    icu::ResourceBundle table(icu::UnicodeString::fromUTF8(path), icu::Locale(language), status);
    EXPECT_EQ(status, U_ZERO_ERROR) << language << ": " << u_errorName(status);
    if (U_FAILURE(status)) {
        return out;
    }
    while (table.hasNext()) {
        icu::ResourceBundle item = table.getNext(status);
        icu::UnicodeString text = item.getString(status);
        Text entry;
        text.toUTF8String(entry.utf8);
        entry.arguments = argumentsOf(text, entry.valid);
        out[item.getKey()] = entry;
    }
    return out;
}

struct RaiseSite {
    std::string file;
    size_t line;
    std::string key;
    int arguments;  // -1 when the site doesn't pass a braced list
};

// Arguments in the braced list that starts at text[open]: top-level commas, skipping
// nested brackets and literals.
int countArguments(const std::string &text, size_t open)
{
    int depth = 0;
    int commas = 0;
    bool any = false;
    for (size_t i = open; i < text.size(); ++i) {
        char c = text[i];
        if (c == '"' || c == '\'') {
            for (++i; i < text.size() && text[i] != c; ++i) {
                if (text[i] == '\\') {
                    ++i;
                }
            }
            any = true;
            continue;
        }
        if (c == '{' || c == '(' || c == '[') {
            ++depth;
            if (depth > 1) {
                any = true;
            }
            continue;
        }
        if (c == '}' || c == ')' || c == ']') {
            if (--depth == 0) {
                return any ? commas + 1 : 0;
            }
            continue;
        }
        if (depth == 1 && c == ',') {
            ++commas;
        } else if (!isspace(static_cast<unsigned char>(c))) {
            any = true;
        }
    }
    return -1;
}

// Every message key written in the provider's and the kit's sources, with its raise sites.
std::vector<RaiseSite> raiseSites()
{
    std::vector<RaiseSite> sites;
    const std::string source = envOr("TAMLIN_SOURCE_DIR", "..");
    const std::regex literal("\"(MSG_ERROR_[A-Z0-9_]*[A-Z0-9])\"");
    for (const char *dir : {"providers", "pdk"}) {
        for (const auto &entry : std::filesystem::recursive_directory_iterator(source + "/" + dir)) {
            std::string ext = entry.path().extension().string();
            if (ext != ".cc" && ext != ".h") {
                continue;
            }
            std::ifstream in(entry.path());
            std::stringstream buffer;
            buffer << in.rdbuf();
            const std::string text = buffer.str();
            for (std::sregex_iterator it(text.begin(), text.end(), literal), end; it != end; ++it) {
                size_t at = it->position();
                RaiseSite site{entry.path().string(),
                               static_cast<size_t>(std::count(text.begin(), text.begin() + at, '\n') + 1), (*it)[1],
                               -1};
                size_t before = at > 200 ? at - 200 : 0;
                bool pushed = text.substr(before, at - before).find("pushMessage(") != std::string::npos;
                size_t next = text.find_first_not_of(" \t\r\n", at + it->length());
                if (pushed && next != std::string::npos && text[next] == ',') {
                    size_t open = text.find_first_not_of(" \t\r\n", next + 1);
                    if (open != std::string::npos && text[open] == '{') {
                        site.arguments = countArguments(text, open);
                    }
                }
                sites.push_back(site);
            }
        }
    }
    return sites;
}

std::set<std::string> requiredKeys()
{
    std::set<std::string> keys;
    for (const auto &k : kRaisedKeys) {
        keys.insert(k.first);
    }
    for (int code : kResultCodes) {
        keys.insert(CFiError(code, L"", L"", 0, L"").getMessageKey("tamlin", 6000));
    }
    for (const RaiseSite &site : raiseSites()) {
        keys.insert(site.key);
    }
    return keys;
}

int placeholders(const Arguments &arguments)
{
    return arguments.empty() ? 0 : arguments.rbegin()->first + 1;
}

}  // namespace

TEST(CatalogKeys, BothLanguagesHoldEveryKeyAsAValidPattern)
{
    std::map<std::string, Text> root = bundle("root");
    std::map<std::string, Text> de = bundle("de");
    ASSERT_FALSE(root.empty());
    std::set<std::string> required = requiredKeys();
    EXPECT_GE(required.size(), kRaisedKeys.size() + 10);
    for (const std::string &key : required) {
        EXPECT_EQ(root.count(key), 1u) << key << " missing in root";
        EXPECT_EQ(de.count(key), 1u) << key << " missing in de";
    }
    // German is complete, and has nothing root lacks.
    for (const auto &entry : root) {
        EXPECT_EQ(de.count(entry.first), 1u) << entry.first << " untranslated";
    }
    for (const auto &entry : de) {
        EXPECT_EQ(root.count(entry.first), 1u) << entry.first << " only in de";
    }
    for (const auto *language : {&root, &de}) {
        for (const auto &entry : *language) {
            EXPECT_TRUE(entry.second.valid) << entry.first << ": " << entry.second.utf8;
            EXPECT_FALSE(entry.second.utf8.empty()) << entry.first;
        }
    }
}

TEST(CatalogKeys, PlaceholdersFollowTheRaiseSitesArguments)
{
    std::map<std::string, Text> root = bundle("root");
    std::map<std::string, Text> de = bundle("de");
    for (const auto &raised : kRaisedKeys) {
        auto text = root.find(raised.first);
        if (text == root.end()) {
            continue;  // reported above
        }
        // Each argument appears, numbered from 0 in the order the site passes them.
        const Arguments &args = text->second.arguments;
        EXPECT_EQ(placeholders(args), raised.second) << raised.first << ": " << text->second.utf8;
        EXPECT_EQ(static_cast<int>(args.size()), raised.second) << raised.first << " leaves an argument out";
        if (de.count(raised.first) != 0) {
            EXPECT_EQ(de[raised.first].arguments, args) << raised.first << ": " << de[raised.first].utf8;
        }
    }
    // The texts behind result codes take no arguments.
    for (const auto &entry : root) {
        if (std::regex_match(entry.first, std::regex("MSG_ERROR_TAMLIN_[0-9]{4}"))) {
            EXPECT_TRUE(entry.second.arguments.empty()) << entry.first;
            EXPECT_TRUE(de[entry.first].arguments.empty()) << entry.first;
        }
    }

    int checked = 0;
    for (const RaiseSite &site : raiseSites()) {
        auto listed = kRaisedKeys.find(site.key);
        EXPECT_TRUE(listed != kRaisedKeys.end())
            << site.key << " at " << site.file << ":" << site.line << " is not a known message";
        if (site.arguments < 0 || listed == kRaisedKeys.end()) {
            continue;
        }
        ++checked;
        EXPECT_EQ(site.arguments, listed->second) << site.key << " at " << site.file << ":" << site.line;
        if (root.count(site.key) != 0) {
            EXPECT_EQ(site.arguments, placeholders(root[site.key].arguments))
                << site.key << " at " << site.file << ":" << site.line;
        }
    }
    EXPECT_GE(checked, 6) << "the ladder's sites at least";
}
