#include "output.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace evasim {

namespace {

constexpr size_t kFlushAt = 1 << 16;

void writeAll(int fd, const std::string &data)
{
    size_t done = 0;
    while (done < data.size()) {
        const ssize_t n = ::write(fd, data.data() + done, data.size() - done);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return;  // the reader went away; nothing left to tell it
        }
        done += static_cast<size_t>(n);
    }
}

}  // namespace

Output::Output(int fd) : m_fd(fd) {}

Output::~Output()
{
    flush();
}

void Output::line(const std::string &text)
{
    if (m_beforeNext) {
        const std::function<void()> first = std::move(m_beforeNext);
        m_beforeNext = nullptr;
        first();
    }
    if (m_capturing) {
        if (m_captured.size() < m_keep) {
            m_captured.push_back(text);
        }
        ++m_captureCount;
    }
    if (m_separatorOwed) {
        m_buffer += '\n';
    }
    m_buffer += text;
    m_separatorOwed = true;
    ++m_lines;
    if (m_exitAfter && m_lines == m_exitAfter) {
        m_buffer += '\n';
        flush();
        if (m_last) {
            m_last();
        }
        ::_exit(m_exitStatus);
    }
    if (m_silenceAfter && m_lines == m_silenceAfter) {
        // The line goes out whole, so the reader sees it before the pause.
        m_buffer += '\n';
        m_separatorOwed = false;
        pause(m_silenceSeconds);
    }
    if (m_buffer.size() >= kFlushAt) {
        flush();
    }
}

void Output::flush()
{
    if (m_buffer.empty()) {
        return;
    }
    writeAll(m_fd, m_buffer);
    m_buffer.clear();
}

void Output::finishLine()
{
    if (m_separatorOwed) {
        m_buffer += '\n';
        m_separatorOwed = false;
    }
}

void Output::pause(double seconds)
{
    flush();
    if (seconds > 0) {
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    }
}

void Output::beforeNextLine(std::function<void()> first)
{
    m_beforeNext = std::move(first);
}

void Output::capture(size_t keep)
{
    m_capturing = true;
    m_keep = keep;
    m_captureCount = 0;
    m_captured.clear();
}

std::vector<std::string> Output::captured(long long &count)
{
    m_capturing = false;
    count = m_captureCount;
    return std::move(m_captured);
}

void Output::silenceAfter(long long after, double seconds)
{
    m_silenceAfter = after;
    m_silenceSeconds = seconds;
}

void Output::exitAfter(long long after, int status, std::function<void()> last)
{
    m_exitAfter = after;
    m_exitStatus = status;
    m_last = std::move(last);
}

}  // namespace evasim
