// SSSU's standard output: lines separated by line feeds, the last one without; with the faults
// that cut it short or make it pause.
#ifndef EVASIM_OUTPUT_H
#define EVASIM_OUTPUT_H

#include <functional>
#include <string>
#include <vector>

namespace evasim {

class Output {
public:
    explicit Output(int fd);
    ~Output();

    void line(const std::string &text);
    void flush();
    // Sleeps (after flushing what is written) for 'seconds'.
    void pause(double seconds);
    // Ends the last line now, so that a reader has it whole before a pause or the end.
    void finishLine();

    // After output line 'after' has gone out whole, be silent for 'seconds'.
    void silenceAfter(long long after, double seconds);
    // After output line 'after', run 'last' (which saves the state) and end the process.
    void exitAfter(long long after, int status, std::function<void()> last);

    long long lines() const { return m_lines; }

    // 'first' runs once, before the next line goes out.
    void beforeNextLine(std::function<void()> first);
    // Keeps the lines that go out from now on (the first 'keep' of them) and counts them all.
    void capture(size_t keep);
    // Ends the capture: the lines kept, and in 'count' how many went out.
    std::vector<std::string> captured(long long &count);

private:
    int m_fd;
    std::string m_buffer;
    long long m_lines = 0;
    bool m_separatorOwed = false;  // the line feed that ends the last line not yet written
    long long m_silenceAfter = 0;
    double m_silenceSeconds = 0;
    long long m_exitAfter = 0;
    int m_exitStatus = 0;
    std::function<void()> m_last;
    std::function<void()> m_beforeNext;
    bool m_capturing = false;
    size_t m_keep = 0;
    long long m_captureCount = 0;
    std::vector<std::string> m_captured;
};

}  // namespace evasim

#endif
