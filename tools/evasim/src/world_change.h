// A change of the array that no SSSU command makes: a disk fails, a copy stalls or ends, a DR
// group's state or link changes, a cell shrinks. `evasim change` makes one at once; the fault
// "change" makes one when a run reaches a given command.
#ifndef EVASIM_WORLD_CHANGE_H
#define EVASIM_WORLD_CHANGE_H

#include <string>
#include <vector>

namespace evasim {

class Settings;
class World;

class WorldChange {
public:
    // The words: "disk CELL PATH KEY=VALUE...", "drgroup NAME KEY=VALUE..." or
    // "cell NAME KEY=VALUE...". Gives an error text, empty when the words make a change.
    std::string parse(const std::vector<std::string> &words);
    // Applies it; gives an error text (no such object, or a refusal), empty on success. A refused
    // change changes nothing.
    std::string apply(World &world, const Settings &settings) const;

    // The words as one text and back, for the fault that keeps a change.
    std::string text() const;
    std::string fromText(const std::string &text);
    std::string describe() const;

    static const char *help();

private:
    std::vector<std::string> m_words;
    std::string m_kind;
    std::vector<std::pair<std::string, std::string>> m_values;
};

}  // namespace evasim

#endif
