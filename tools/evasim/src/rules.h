// The array's refusals, each a named rule: what it refuses, the error it answers with, and whether
// it is known behaviour of an EVA or an assumption of this simulator. `evasim show rules` lists
// them; the setting rules_off turns single rules off.
#ifndef EVASIM_RULES_H
#define EVASIM_RULES_H

#include <string>
#include <vector>

namespace evasim {

struct Rule {
    const char *name;
    const char *commands;  // the commands it refuses
    const char *refuses;   // what it refuses, in a few words
    const char *error;     // the text after "Error: ", with <...> for what varies
    bool assumption;       // true: not known behaviour of the array, only likely
};

class Rules {
public:
    static const std::vector<Rule> &all();
    static const Rule *find(const std::string &name);
};

}  // namespace evasim

#endif
