// SSSU's keywords: any beginning of a keyword that no other keyword of the same place shares stands
// for it ("LS VD" is "LS VDISK", "user=" is "USERNAME="), and a whole keyword always stands for
// itself even when it begins a longer one.
#ifndef EVASIM_KEYWORDS_H
#define EVASIM_KEYWORDS_H

#include <string>
#include <vector>

namespace evasim {

struct Token;

class Keywords {
public:
    enum class Match { None, One, Ambiguous };

    // Which of 'choices' 'word' stands for, ignoring case; 'keyword' gets it on Match::One.
    static Match match(const std::string &word, const std::vector<const char *> &choices, std::string &keyword);

    // Writes out the keywords of one command line in place: the verb, the object behind it and the
    // options of that command (KEY= of KEY=VALUE items and bare option words) from its first option
    // on. Names are left as written. False on an ambiguous keyword, with its column in 'column'.
    static bool expand(std::vector<Token> &tokens, size_t &column);
};

}  // namespace evasim

#endif
