#include "cfioutputlines.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qorin_pdk_4_4 {

namespace {

const size_t kFirstBlock = 16 * 1024;
const size_t kLargestBlock = 1024 * 1024;

}  // namespace

CFiOutputLines::CFiOutputLines() : m_free(nullptr), m_room(0), m_blockSize(kFirstBlock) {}

CFiOutputLines::CFiOutputLines(const std::vector<std::string> &lines) : CFiOutputLines()
{
    m_lines.reserve(lines.size());
    for (const std::string &line : lines) {
        push_back(line);
    }
}

CFiOutputLines::~CFiOutputLines() = default;

CFiOutputLines::CFiOutputLines(CFiOutputLines &&other) noexcept :
    m_blocks(std::move(other.m_blocks)),
    m_free(std::exchange(other.m_free, nullptr)),
    m_room(std::exchange(other.m_room, 0)),
    m_blockSize(std::exchange(other.m_blockSize, kFirstBlock)),
    m_lines(std::move(other.m_lines))
{
    other.m_blocks.clear();
    other.m_lines.clear();
}

CFiOutputLines &CFiOutputLines::operator=(CFiOutputLines &&other) noexcept
{
    if (this != &other) {
        m_blocks = std::move(other.m_blocks);
        m_free = std::exchange(other.m_free, nullptr);
        m_room = std::exchange(other.m_room, 0);
        m_blockSize = std::exchange(other.m_blockSize, kFirstBlock);
        m_lines = std::move(other.m_lines);
        other.m_blocks.clear();
        other.m_lines.clear();
    }
    return *this;
}

std::string_view CFiOutputLines::keep(std::string_view text)
{
    if (text.empty()) {
        return std::string_view();
    }
    if (text.size() > m_room) {
        if (text.size() > m_blockSize / 4) {
            // A long line gets a block of its own; the current one keeps its room.
            m_blocks.emplace_back(new char[text.size()]);
            std::memcpy(m_blocks.back().get(), text.data(), text.size());
            return std::string_view(m_blocks.back().get(), text.size());
        }
        // Not zeroed: pages never written cost no memory.
        m_blocks.emplace_back(new char[m_blockSize]);
        m_free = m_blocks.back().get();
        m_room = m_blockSize;
        m_blockSize = std::min(m_blockSize * 2, kLargestBlock);
    }
    std::memcpy(m_free, text.data(), text.size());
    const std::string_view kept(m_free, text.size());
    m_free += text.size();
    m_room -= text.size();
    return kept;
}

void CFiOutputLines::push_back(std::string_view line)
{
    m_lines.push_back(keep(line));
}

void CFiOutputLines::insert(size_t index, std::string_view line)
{
    const std::string_view kept = keep(line);
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(std::min(index, m_lines.size())), kept);
}

void CFiOutputLines::replace(size_t index, std::string_view text)
{
    m_lines.at(index) = keep(text);
}

void CFiOutputLines::clear()
{
    std::vector<std::string_view>().swap(m_lines);
    std::vector<std::unique_ptr<char[]>>().swap(m_blocks);
    m_free = nullptr;
    m_room = 0;
    m_blockSize = kFirstBlock;
}

std::vector<std::string> CFiOutputLines::strings(size_t count) const
{
    const size_t taken = std::min(count, m_lines.size());
    return std::vector<std::string>(m_lines.begin(), m_lines.begin() + static_cast<std::ptrdiff_t>(taken));
}

}  // namespace qorin_pdk_4_4
