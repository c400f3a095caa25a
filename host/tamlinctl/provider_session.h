#ifndef PROVIDER_SESSION_H
#define PROVIDER_SESSION_H

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "cli_options.h"
#include "host_context.h"
#include "provider_library.h"

// One run of tamlinctl against the provider: loads it, initialises it with a host context
// that shows the provider's messages on standard error, and finishes it at the end.
class ProviderSession {
public:
    static const int kExitOk = 0;
    static const int kExitFailed = 1;
    static const int kExitUsage = 2;
    static const int kExitLoad = 3;

    explicit ProviderSession(const CliOptions &options);
    ~ProviderSession();

    // Loads and initialises. 0, or the exit status for a library that can't be loaded.
    // A failed init is reported; whether it ends the run is the caller's choice.
    int start();
    // Calls fini now instead of at the end of the session.
    void finish();
    int32_t initResult() const { return m_initResult; }
    const uint16_t *version() const { return m_version; }
    const ProviderLibrary &lib() const { return m_library; }

    // Reports an entry that failed: the result's meaning and, if the provider didn't push
    // it already during the call, the reason in the calling thread's last error.
    int failure(const std::string &entry, int32_t result);
    // Call before an entry so that failure() knows what was shown during it.
    void beginCall() { m_reasonShown = false; }
    // Sees every trace line of the provider, shown or not, as it arrives, on the thread that
    // traced it; an empty watcher ends the watch.
    void watchTraces(std::function<void(const std::wstring &)> watcher) { m_traceWatcher = std::move(watcher); }
    // Lines printed on standard error for the provider so far, so that a command that draws
    // in place knows when something came between.
    unsigned long printedLines() const { return m_printed.load(); }
    // Whether the provider pushed a warning or an error since beginCall: how a host learns of
    // a refusal that comes with result 0.
    bool reasonShown() const { return m_reasonShown; }
    std::wstring errmsgText(int32_t code);
    std::wstring lastErrorText();

    ProviderSession(const ProviderSession &) = delete;
    ProviderSession &operator=(const ProviderSession &) = delete;

private:
    void onMessage(const std::wstring &hostText, const std::wstring &defaultText, int severity);

    CliOptions m_options;
    ProviderLibrary m_library;
    std::unique_ptr<HostContext> m_host;
    uint16_t m_version[4] = {0, 0, 0, 0};
    int32_t m_initResult = -1;
    bool m_initCalled = false;
    bool m_reasonShown = false;
    std::function<void(const std::wstring &)> m_traceWatcher;
    std::atomic<unsigned long> m_printed{0};
};

#endif
