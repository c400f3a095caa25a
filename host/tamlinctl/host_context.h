#ifndef HOST_CONTEXT_H
#define HOST_CONTEXT_H

#include <functional>
#include <string>

#include "qrn_records.h"

// The host's side of init: a qrn_host_context with a language and a message callback.
// The context is the first member, so the callback can find its object again.
class HostContext {
public:
    using Sink = std::function<void(const std::wstring &hostText, const std::wstring &defaultText, int severity)>;

    // An empty language leaves the record's language pointer null.
    HostContext(const std::string &language, Sink sink);

    qrn_host_context *get() { return &m_context; }
    const std::string &language() const { return m_language; }

    // A sink that prints each message on standard error, in the host's language when the
    // provider gave one, with its severity.
    static Sink printToStderr();

    HostContext(const HostContext &) = delete;
    HostContext &operator=(const HostContext &) = delete;

private:
    static int32_t onMessage(qrn_host_context *context, const wchar_t *hostText, const wchar_t *defaultText,
                             int32_t severity);

    qrn_host_context m_context;  // must stay first
    qrn_host_language m_languageRecord;
    std::string m_language;
    Sink m_sink;
};

#endif
