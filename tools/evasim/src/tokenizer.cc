#include "tokenizer.h"

#include "text_util.h"

namespace evasim {

bool Token::is(const char *keyword) const
{
    return kind == Word && iequals(text, keyword);
}

bool Token::isKey(const char *key) const
{
    return kind == Assign && iequals(text, key);
}

bool Tokenizer::split(const std::string &line, std::vector<Token> &tokens, size_t &errorColumn)
{
    tokens.clear();
    size_t i = 0;
    const size_t n = line.size();
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (i < n) {
        if (blank(line[i])) {
            ++i;
            continue;
        }
        Token t;
        t.column = i;
        if (line[i] == '"') {
            const size_t close = line.find('"', i + 1);
            if (close == std::string::npos) {
                errorColumn = i;
                return false;
            }
            t.kind = Token::Quoted;
            t.text = line.substr(i + 1, close - i - 1);
            i = close + 1;
            tokens.push_back(t);
            continue;
        }
        size_t j = i;
        while (j < n && !blank(line[j]) && line[j] != '=' && line[j] != '"') {
            ++j;
        }
        t.text = line.substr(i, j - i);
        if (j < n && line[j] == '=' && j > i) {
            t.kind = Token::Assign;
            size_t k = j + 1;
            if (k < n && line[k] == '"') {
                const size_t close = line.find('"', k + 1);
                if (close == std::string::npos) {
                    errorColumn = k;
                    return false;
                }
                t.value = line.substr(k + 1, close - k - 1);
                i = close + 1;
            } else {
                size_t e = k;
                while (e < n && !blank(line[e])) {
                    ++e;
                }
                t.value = line.substr(k, e - k);
                i = e;
            }
        } else {
            // A word runs to the next blank; a stray '=' or quote inside it stays part of it.
            while (j < n && !blank(line[j])) {
                ++j;
            }
            t.text = line.substr(i, j - i);
            i = j;
        }
        tokens.push_back(t);
    }
    return true;
}

}  // namespace evasim
