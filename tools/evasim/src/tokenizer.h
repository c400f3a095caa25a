// Splits one SSSU command line (or one scenario line) into words, quoted names and KEY=VALUE items.
// Double quotes group a text with blanks; there is no escape, a backslash is an ordinary character.
#ifndef EVASIM_TOKENIZER_H
#define EVASIM_TOKENIZER_H

#include <string>
#include <vector>

namespace evasim {

struct Token {
    enum Kind { Word, Quoted, Assign } kind = Word;
    std::string text;   // the word, the quoted text, or the key of KEY=VALUE
    std::string value;  // the value of KEY=VALUE, quotes removed
    size_t column = 0;  // where the token starts in the line

    // The token's text as a name: a word or a quoted text.
    bool isName() const { return kind == Word || kind == Quoted; }
    bool is(const char *keyword) const;  // a word equal to keyword, ignoring case
    bool isKey(const char *key) const;   // KEY=... with that key, ignoring case
};

class Tokenizer {
public:
    // False on an unclosed quote; 'errorColumn' then tells where it opened.
    static bool split(const std::string &line, std::vector<Token> &tokens, size_t &errorColumn);
};

}  // namespace evasim

#endif
