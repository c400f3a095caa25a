#include "hpeva_plugin.h"

CHpEvaPlugin::CHpEvaPlugin() = default;

CHpEvaPlugin::~CHpEvaPlugin() = default;
