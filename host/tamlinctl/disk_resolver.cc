#include "disk_resolver.h"

#include <algorithm>
#include <cctype>

namespace {

const std::string kHead = "HP##HSV##";
const std::string kVirtualDisks = "\\Virtual Disks\\";
const std::string kActive = "\\ACTIVE";

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool startsWith(const std::string &text, const std::string &head, bool caseless)
{
    return text.size() >= head.size() &&
           (caseless ? lower(text.substr(0, head.size())) == lower(head) : text.compare(0, head.size(), head) == 0);
}

bool endsWith(const std::string &text, const std::string &tail)
{
    return text.size() >= tail.size() && lower(text.substr(text.size() - tail.size())) == lower(tail);
}

// A name split into its cell (empty when not given) and its path below "\Virtual Disks\",
// without the "\ACTIVE" of an active disk: the parts a word and a listed name are compared by.
struct NameParts {
    std::string cell;
    std::string path;
};

NameParts partsOf(std::string name)
{
    if (startsWith(name, kHead, true)) {
        name.erase(0, kHead.size());
    }
    NameParts parts;
    const size_t separator = name.find("##");
    if (separator != std::string::npos) {
        parts.cell = name.substr(0, separator);
        name.erase(0, separator + 2);
    }
    if (startsWith(name, kVirtualDisks, true)) {
        name.erase(0, kVirtualDisks.size());
    }
    if (endsWith(name, kActive)) {
        name.erase(name.size() - kActive.size());
    }
    parts.path = name;
    return parts;
}

bool same(const std::string &a, const std::string &b, bool caseless)
{
    return caseless ? lower(a) == lower(b) : a == b;
}

std::string candidates(const std::vector<const KnownDisk *> &found)
{
    std::string text;
    for (const KnownDisk *disk : found) {
        text += (text.empty() ? "" : ", ") + disk->name + " (" + disk->udid + ")";
    }
    return text;
}

}  // namespace

bool DiskResolver::match(const std::string &word, const std::vector<KnownDisk> &listing, KnownDisk &disk,
                         std::string &error)
{
    if (lower(word).find("udid##") != std::string::npos) {
        for (const KnownDisk &known : listing) {
            if (same(known.udid, word, true)) {
                disk = known;
                disk.word = word;
                return true;
            }
        }
        error = "no disk of the arrays the provider reaches has the UDID " + word + " (see tamlinctl disks)";
        return false;
    }
    const NameParts wanted = partsOf(word);
    if (wanted.path.empty()) {
        error = "'" + word + "' names no disk: give a UDID or a name as tamlinctl disks shows it";
        return false;
    }
    // Exact names first: only where none matches does case stop counting.
    for (bool caseless : {false, true}) {
        std::vector<const KnownDisk *> found;
        for (const KnownDisk &known : listing) {
            const NameParts listed = partsOf(known.name);
            if (same(listed.path, wanted.path, caseless) &&
                (wanted.cell.empty() || same(listed.cell, wanted.cell, caseless))) {
                found.push_back(&known);
            }
        }
        if (found.size() == 1) {
            disk = *found.front();
            disk.word = word;
            return true;
        }
        if (found.size() > 1) {
            error = "'" + word + "' names " + std::to_string(found.size()) + " disks: " + candidates(found) +
                    "; give its cell (CELL##PATH) or its UDID";
            return false;
        }
    }
    error = "no disk is named '" + word + "' on the arrays the provider reaches";
    // A word that is only the last part of a path is a likely slip.
    std::vector<const KnownDisk *> near;
    for (const KnownDisk &known : listing) {
        const std::string path = partsOf(known.name).path;
        if (wanted.cell.empty() && endsWith(path, "\\" + wanted.path)) {
            near.push_back(&known);
        }
    }
    error += near.empty() || near.size() > 3 ? " (see tamlinctl disks)" : "; did you mean " + candidates(near) + "?";
    return false;
}

int DiskResolver::load(bool fresh)
{
    if (m_loaded && !fresh) {
        return 0;
    }
    std::vector<KnownDisk> listing;
    const int status = m_lister(listing);
    if (status != 0) {
        return status;
    }
    m_listing = std::move(listing);
    m_loaded = true;
    return 0;
}

int DiskResolver::known(std::vector<KnownDisk> &disks, bool fresh)
{
    const int status = load(fresh);
    if (status == 0) {
        disks = m_listing;
    }
    return status;
}

int DiskResolver::resolve(const std::vector<std::string> &words, std::vector<KnownDisk> &disks)
{
    disks.clear();
    m_error.clear();
    if (words.empty()) {
        return 0;
    }
    const int status = load(false);
    if (status != 0) {
        return status;
    }
    for (const std::string &word : words) {
        KnownDisk disk;
        if (!match(word, m_listing, disk, m_error)) {
            disks.clear();
            return kNotFound;
        }
        disks.push_back(disk);
    }
    return 0;
}
