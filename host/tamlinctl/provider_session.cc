#include "provider_session.h"

#include <cstdio>

#include "install_root.h"
#include "text.h"

namespace {

const char *severityName(int severity)
{
    switch (severity) {
    case 1:
        return "info";
    case 2:
        return "warning";
    case 3:
        return "error";
    default:
        return "detail";
    }
}

}  // namespace

ProviderSession::ProviderSession(const CliOptions &options) : m_options(options) {}

ProviderSession::~ProviderSession()
{
    finish();
}

void ProviderSession::finish()
{
    if (m_initCalled && m_library.isOpen()) {
        m_library->fini();
    }
    m_initCalled = false;
}

void ProviderSession::onMessage(const std::wstring &hostText, const std::wstring &defaultText, int severity)
{
    if (hostText.empty()) {
        if (m_traceWatcher) {
            m_traceWatcher(defaultText);
        }
        // A trace line of the provider: -v shows errors and warnings, -vv the course of
        // operations too, -vvv everything.
        int needed = severity == 3 || severity == 2 ? 1 : severity == 1 ? 2 : 3;
        if (m_options.verbosity >= needed) {
            fprintf(stderr, "trace: %s\n", messageLine(defaultText).c_str());
            ++m_printed;
        }
        return;
    }
    fprintf(stderr, "tamlin %s: %s\n", severityName(severity), messageLine(hostText).c_str());
    ++m_printed;
    if (severity >= 2) {
        m_reasonShown = true;
    }
}

int ProviderSession::start()
{
    if (!m_library.open(m_options.provider)) {
        fprintf(stderr, "tamlinctl: %s\n", m_library.error().c_str());
        for (const std::string &name : m_library.missing()) {
            fprintf(stderr, "tamlinctl: missing entry %s\n", name.c_str());
        }
        return kExitLoad;
    }
    // Without a root the provider could only answer with bare message keys.
    if (!reportInstallRoot(findInstallRoot(), m_options.provider)) {
        return kExitLoad;
    }
    m_host.reset(new HostContext(m_options.language,
                                 [this](const std::wstring &h, const std::wstring &d, int s) { onMessage(h, d, s); }));
    beginCall();
    m_initResult = m_library->init(m_host->get(), m_version);
    m_initCalled = true;
    if (m_initResult != 0) {
        failure("init", m_initResult);
    }
    return kExitOk;
}

std::wstring ProviderSession::errmsgText(int32_t code)
{
    const wchar_t *text = nullptr;
    if (m_library->errmsg(code, &text) != 0 || text == nullptr) {
        return std::wstring();
    }
    std::wstring copy = text;
    m_library->del_locale_message(const_cast<wchar_t **>(&text));
    return copy;
}

std::wstring ProviderSession::lastErrorText()
{
    qrn_msg_info *info = nullptr;
    if (m_library->get_last_error(&info) != 0 || info == nullptr || info->length == 0) {
        return std::wstring();
    }
    wchar_t *text = nullptr;
    m_library->get_locale_message(nullptr, info, m_options.language.c_str(), &text);
    std::wstring copy = text != nullptr ? text : L"";
    if (text != nullptr) {
        m_library->del_locale_message(&text);
    }
    m_library->del_last_error(&info);
    return copy;
}

int ProviderSession::failure(const std::string &entry, int32_t result)
{
    std::string meaning = messageLine(errmsgText(result));
    fprintf(stderr, "tamlinctl: %s failed with result %d%s%s\n", entry.c_str(), result, meaning.empty() ? "" : ": ",
            meaning.c_str());
    if (!m_reasonShown) {
        std::string reason = messageLine(lastErrorText());
        if (!reason.empty()) {
            fprintf(stderr, "tamlinctl: reason: %s\n", reason.c_str());
        }
    }
    return kExitFailed;
}
