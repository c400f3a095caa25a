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
#include "hpeva_process.h"

namespace tamlin_test {

class MessageRecorder : public qorin_pdk_4_4::CFiErrorHandlerBase {
public:
    int handleText(char *text, qrn_eseverity) override
    {
        std::lock_guard<std::mutex> hold(m_lock);
        lines.push_back(text);
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
    void clear()
    {
        lines.clear();
        keys.clear();
        messages.clear();
    }

    std::vector<std::string> lines;
    std::vector<std::string> keys;
    std::vector<qorin_pdk_4_4::CFiMessagePtr> messages;

private:
    std::mutex m_lock;
};

// One recorder on the process's error manager, made at the first call and kept for good.
inline MessageRecorder &processRecorder()
{
    static MessageRecorder *recorder = [] {
        auto *r = new MessageRecorder;
        qorin_pdk_4_4::CFiErrorManagerPtr errors;
        getErrorManagerSingleton(errors, false);
        errors->registerHandler(r);
        return r;
    }();
    return *recorder;
}

}  // namespace tamlin_test

#endif
