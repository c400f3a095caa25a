// Writes listed objects (disks, cells, hosts, DR groups) in one of SSSU's two forms.
#pragma once

#include <string>

namespace evasim {

class ObjectWriter {
public:
    virtual ~ObjectWriter() = default;
    // One listed object; 'objectname' heads it.
    virtual void begin(std::string const &objectname) = 0;
    // A group of elements; 'label' is its name in the text form where that differs from the tag.
    virtual void open(char const *tag, char const *label = nullptr) = 0;
    virtual void leaf(char const *tag, std::string const &value, char const *label = nullptr) = 0;
    virtual void close(char const *tag) = 0;
    virtual void end() = 0;
};

} // namespace evasim
