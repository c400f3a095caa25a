// Writes listed objects (disks, cells, hosts, DR groups) in one of SSSU's two forms.
#ifndef EVASIM_OBJECT_WRITER_H
#define EVASIM_OBJECT_WRITER_H

#include <string>

namespace evasim {

class ObjectWriter {
public:
    virtual ~ObjectWriter() = default;
    // One listed object; 'objectname' heads it.
    virtual void begin(const std::string &objectname) = 0;
    // A group of elements; 'label' is its name in the text form where that differs from the tag.
    virtual void open(const char *tag, const char *label = nullptr) = 0;
    virtual void leaf(const char *tag, const std::string &value, const char *label = nullptr) = 0;
    virtual void close(const char *tag) = 0;
    virtual void end() = 0;
};

}  // namespace evasim

#endif
