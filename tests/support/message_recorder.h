// An error handler that keeps what reaches it: trace lines and pushed messages. Threads
// may report at once (the error manager calls handlers without a lock); read the vectors
// once they are done.
#ifndef MESSAGE_RECORDER_H
#define MESSAGE_RECORDER_H

#include <mutex>
#include <string>
#include <vector>

#include "cfierrorhandlerbase.h"
#include "cfimessage.h"

namespace tamlin_test {

class MessageRecorder : public qorin_pdk_4_4::CFiErrorHandlerBase {
public:
    int handleText(char *text, qrn_eseverity severity) override
    {
        std::lock_guard<std::mutex> hold(m_lock);
        lines.push_back(text);
        severities.push_back(severity);
        return 0;
    }
    int handleMessage(qorin_pdk_4_4::CFiMessagePtr message) override
    {
        std::lock_guard<std::mutex> hold(m_lock);
        keys.push_back(message->getMessageKey());
        messages.push_back(message);
        return 0;
    }
    // Trace lines holding fragment.
    size_t count(const std::string &fragment) const
    {
        size_t n = 0;
        for (const std::string &line : lines) {
            n += line.find(fragment) != std::string::npos ? 1 : 0;
        }
        return n;
    }
    bool traced(const std::string &fragment) const { return count(fragment) != 0; }
    // The text of each trace line of a severity, without the line's frame up to "> ".
    std::vector<std::string> texts(int severity) const
    {
        std::vector<std::string> out;
        for (size_t i = 0; i < lines.size(); ++i) {
            if (severities[i] == severity) {
                const size_t mark = lines[i].find("> ");
                out.push_back(mark == std::string::npos ? lines[i] : lines[i].substr(mark + 2));
            }
        }
        return out;
    }
    void clear()
    {
        lines.clear();
        severities.clear();
        keys.clear();
        messages.clear();
    }

    std::vector<std::string> lines;
    std::vector<int> severities;
    std::vector<std::string> keys;
    std::vector<qorin_pdk_4_4::CFiMessagePtr> messages;

private:
    std::mutex m_lock;
};

}  // namespace tamlin_test

#endif
