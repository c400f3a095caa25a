#ifndef INSTALL_ROOT_H
#define INSTALL_ROOT_H

#include <string>
#include <vector>

// The install root the provider will run in, looked for as the provider looks: the value
// "InstallDir64" of [SOFTWARE\Orvanta\Qorin] (with "\<consumer>" when QORIN_CONSUMER is set)
// in the registry stand-in ($QORIN_REGISTRY, else /etc/qorin/registry.conf), else
// $QORIN_INSTALL_ROOT. Without one the provider has no configuration, no message catalogs
// and no log, and all it could say would be bare message keys.
struct InstallRootSearch {
    std::string root;                 // empty: none found
    std::vector<std::string> looked;  // what was looked at, and what was there, in words
};

InstallRootSearch findInstallRoot();

// What tamlinctl says before it loads the provider: an error without a usable root (and then
// false), a warning for a root without message catalogs.
bool reportInstallRoot(const InstallRootSearch &search, const std::string &provider);

// The message catalogs this tamlinctl came with: installed beside it, or built in its build
// tree; empty when neither is there.
std::string bundledMessageCatalogs();

#endif
