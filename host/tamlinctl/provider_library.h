#ifndef PROVIDER_LIBRARY_H
#define PROVIDER_LIBRARY_H

#include <string>
#include <vector>

#include "tamlin_entries.h"

// The provider as a host sees it: a shared library opened with dlopen and its 70 entries
// resolved by name.
class ProviderLibrary {
public:
    struct Entries {
#define TAMLIN_ENTRY_POINTER(name) decltype(&tamlin_fi_pgn_##name) name = nullptr;
        TAMLIN_ENTRY_NAMES(TAMLIN_ENTRY_POINTER)
#undef TAMLIN_ENTRY_POINTER
    };

    ProviderLibrary() = default;
    ~ProviderLibrary();

    // Opens the library and resolves every entry. False with a reason when the library
    // can't be loaded or any entry is missing; missing() then names each one.
    bool open(const std::string &path);
    void close();

    const std::string &error() const
    {
        return m_error;
    }
    const std::vector<std::string> &missing() const
    {
        return m_missing;
    }
    const Entries &entries() const
    {
        return m_entries;
    }
    const Entries *operator->() const
    {
        return &m_entries;
    }
    bool isOpen() const
    {
        return m_handle != nullptr;
    }
    static size_t entryCount();

    // The provider installed beside this program: <dir of executable>/../lib/libtamlin.so.
    static std::string defaultPath();

    ProviderLibrary(const ProviderLibrary &) = delete;
    ProviderLibrary &operator=(const ProviderLibrary &) = delete;

private:
    void *m_handle = nullptr;
    Entries m_entries;
    std::string m_error;
    std::vector<std::string> m_missing;
};

#endif
