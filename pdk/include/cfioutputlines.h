#ifndef CFIOUTPUTLINES_H
#define CFIOUTPUTLINES_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// The lines a child printed, kept one after the other in large blocks, each line a view into
// them. Half a million short lines, as in a listing of 10,000 disks, take little more than
// their own size here; as strings of their own they take twice as much (a header and an
// allocation each), which is the difference between a host that holds a listing and one
// that runs short of memory.
//
// A line may be emptied or replaced; its old text stays in the blocks until the object goes.
// Moving keeps the views valid; there are no copies, strings() makes one.
class QORIN_PDK_API CFiOutputLines {
public:
    using const_iterator = std::vector<std::string_view>::const_iterator;

    CFiOutputLines();
    explicit CFiOutputLines(const std::vector<std::string> &lines);
    ~CFiOutputLines();
    CFiOutputLines(CFiOutputLines &&other) noexcept;
    CFiOutputLines &operator=(CFiOutputLines &&other) noexcept;
    CFiOutputLines(const CFiOutputLines &) = delete;
    CFiOutputLines &operator=(const CFiOutputLines &) = delete;

    size_t size() const { return m_lines.size(); }
    bool empty() const { return m_lines.empty(); }
    std::string_view operator[](size_t index) const { return m_lines[index]; }
    std::string_view back() const { return m_lines.back(); }
    const_iterator begin() const { return m_lines.begin(); }
    const_iterator end() const { return m_lines.end(); }

    // Each copies the text.
    void push_back(std::string_view line);
    void insert(size_t index, std::string_view line);
    void replace(size_t index, std::string_view text);
    // No lines, and no memory held for them.
    void clear();

    // The lines as strings of their own: count of them from the first, or all.
    std::vector<std::string> strings(size_t count = std::string::npos) const;

private:
    // A copy of text in the blocks.
    std::string_view keep(std::string_view text);

    std::vector<std::unique_ptr<char[]>> m_blocks;
    char *m_free;
    size_t m_room;
    // Size of the next block: small outputs take little, large ones few blocks.
    size_t m_blockSize;
    std::vector<std::string_view> m_lines;
};

}  // namespace qorin_pdk_4_4

#endif
