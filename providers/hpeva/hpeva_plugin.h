#ifndef HPEVA_PLUGIN_H
#define HPEVA_PLUGIN_H

#include "cfipluginbase.h"

// The EVA provider: what each host operation means on an EVA array.
class CHpEvaPlugin : public qorin_pdk_4_4::CFiPluginBase {
public:
    CHpEvaPlugin();
    ~CHpEvaPlugin() override;
};

#endif
