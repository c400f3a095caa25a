#include "host_context.h"

#include <cstdio>

#include "text.h"

HostContext::HostContext(const std::string &language, Sink sink) : m_language(language), m_sink(std::move(sink))
{
    m_context = qrn_host_context();
    m_context.callback = &HostContext::onMessage;
    m_languageRecord.name = const_cast<char *>(m_language.c_str());
    m_context.language = m_language.empty() ? nullptr : &m_languageRecord;
}

int32_t HostContext::onMessage(qrn_host_context *context, const wchar_t *hostText, const wchar_t *defaultText,
                               int32_t severity)
{
    auto *self = reinterpret_cast<HostContext *>(context);
    if (self != nullptr && self->m_sink) {
        self->m_sink(hostText != nullptr ? hostText : L"", defaultText != nullptr ? defaultText : L"", severity);
    }
    return 0;
}

HostContext::Sink HostContext::printToStderr()
{
    return [](const std::wstring &hostText, const std::wstring &defaultText, int severity) {
        static const char *const names[] = {"", "info", "warning", "error", "detail"};
        const std::string line = messageLine(hostText.empty() ? defaultText : hostText);
        const char *name = severity >= 1 && severity <= 4 ? names[severity] : "message";
        fprintf(stderr, "tamlin %s: %s\n", name, line.c_str());
    };
}
