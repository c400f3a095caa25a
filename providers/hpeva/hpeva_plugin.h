#ifndef HPEVA_PLUGIN_H
#define HPEVA_PLUGIN_H

#include "cfiplugininterposer.h"
#include "hpeva_guard.h"

// The EVA provider: what each host operation means on an EVA array.
class CHpEvaPlugin : public qorin_pdk_4_4::CFiPluginInterposer {
public:
    // The provider's name, one per process, and the identifiers it claims.
    static constexpr const wchar_t *PROVIDER_NAME = L"tamlin";
    static constexpr const char *UDID_PREFIX = "UDID##HP##HSV##";

    CHpEvaPlugin();
    ~CHpEvaPlugin() override;

    int getProviderInfo(qrn_provider_list **out) override;
    int enumerateFims(qrn_fim_list **out) override;

protected:
    // The catch ladder for one operation of this class; line is the guard's call site.
    CHpEvaGuard guard(const char *operation, int line, bool initialisation = false) const;
};

#endif
