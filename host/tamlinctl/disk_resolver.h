// How tamlinctl's commands take a disk from the command line: its UDID, or its name as
// `tamlinctl disks` shows it, in full or shortened.
#ifndef DISK_RESOLVER_H
#define DISK_RESOLVER_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// One disk the provider listed, and the word that named it.
struct KnownDisk {
    std::string name;  // as `tamlinctl disks` shows it: HP##HSV##<cell>##<path>
    std::string udid;
    uint64_t size = 0;
    std::string word;  // what the command line said, once resolved
};

// Resolves words to disks of one listing of the provider, taken at the first word that needs
// it. A word is, in this order:
//   - a UDID (it holds "UDID##"), in any case;
//   - a name as listed: "HP##HSV##EVA01##f\d2", or without the head ("EVA01##f\d2"), or the path
//     alone ("f\d2") when one cell alone has it; a leading "\Virtual Disks\" and a trailing
//     "\ACTIVE" may be given too. Names match exactly, or else without regard to case (the
//     arrays don't tell names apart by case).
// A word that names no disk or several is refused, with the candidates.
class DiskResolver {
public:
    // Fills the list: 0, or the exit status that ends the command (the lister has said why).
    using Lister = std::function<int(std::vector<KnownDisk> &)>;

    explicit DiskResolver(Lister lister) : m_lister(std::move(lister)) {}

    // 0 with one disk per word, in order; the lister's status; or kNotFound with error() set.
    int resolve(const std::vector<std::string> &words, std::vector<KnownDisk> &disks);
    // The disks of the listing; lists again when fresh is set (after a change to the arrays).
    int known(std::vector<KnownDisk> &disks, bool fresh = false);
    const std::string &error() const { return m_error; }

    // The resolution itself, on a given listing: true, or false with the reason in error.
    static bool match(const std::string &word, const std::vector<KnownDisk> &listing, KnownDisk &disk,
                      std::string &error);

    // The exit status of a word that names no disk or several: a usage error.
    static constexpr int kNotFound = 2;

private:
    int load(bool fresh);

    Lister m_lister;
    std::vector<KnownDisk> m_listing;
    bool m_loaded = false;
    std::string m_error;
};

#endif
