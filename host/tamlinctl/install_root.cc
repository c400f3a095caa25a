#include "install_root.h"

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

const char kDefaultRegistry[] = "/etc/qorin/registry.conf";
const char kInstallKey[] = "SOFTWARE\\Orvanta\\Qorin";
const char kInstallValue[] = "InstallDir64";

std::string lower(std::string text)
{
    for (char &c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

std::string trimmed(const std::string &text)
{
    const size_t begin = text.find_first_not_of(" \t\r");
    const size_t end = text.find_last_not_of(" \t\r");
    return begin == std::string::npos ? std::string() : text.substr(begin, end - begin + 1);
}

// Registry names in any letter case, levels joined by "\" or "/".
std::string keyOf(std::string path)
{
    for (char &c : path) {
        if (c == '/') {
            c = '\\';
        }
    }
    return lower(path);
}

bool isDirectory(const std::string &path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The registry's value, or why there is none.
bool readRegistry(const std::string &file, const std::string &key, std::string &value, std::string &why)
{
    std::ifstream in(file);
    if (!in) {
        struct stat info;
        why = stat(file.c_str(), &info) == 0 ? "it cannot be read" : "there is no such file";
        return false;
    }
    const std::string wanted = keyOf(key);
    bool inKey = false;
    std::string line;
    while (std::getline(in, line)) {
        line = trimmed(line);
        if (!line.empty() && line[0] == '[') {
            const size_t close = line.find(']');
            inKey = close != std::string::npos && keyOf(line.substr(1, close - 1)) == wanted;
            continue;
        }
        const std::string name = std::string("\"") + kInstallValue + "\"";
        if (inKey && lower(line.substr(0, name.size())) == lower(name)) {
            const std::string rest = trimmed(line.substr(name.size()));
            const size_t open = rest.find('"');
            const size_t close = rest.rfind('"');
            if (!rest.empty() && rest[0] == '=' && open != std::string::npos && close > open) {
                value = rest.substr(open + 1, close - open - 1);
                return !value.empty();
            }
        }
    }
    why = "it holds no such value";
    return false;
}

}  // namespace

InstallRootSearch findInstallRoot()
{
    InstallRootSearch search;
    const char *registry = getenv("QORIN_REGISTRY");
    const std::string file = registry != nullptr && *registry != '\0' ? registry : kDefaultRegistry;
    const char *consumer = getenv("QORIN_CONSUMER");
    std::string key = kInstallKey;
    if (consumer != nullptr && *consumer != '\0') {
        key += std::string("\\") + consumer;
    }
    std::string why;
    if (readRegistry(file, key, search.root, why)) {
        search.looked.push_back("\"" + std::string(kInstallValue) + "\" of [" + key + "] in the registry file " + file +
                                " names " + search.root);
        return search;
    }
    search.looked.push_back("\"" + std::string(kInstallValue) + "\" of [" + key + "] in the registry file " + file +
                            ": " + why);
    const char *root = getenv("QORIN_INSTALL_ROOT");
    if (root != nullptr && *root != '\0') {
        search.root = root;
        search.looked.push_back("the environment variable QORIN_INSTALL_ROOT names " + search.root);
    } else {
        search.looked.push_back(std::string("the environment variable QORIN_INSTALL_ROOT: ") +
                                (root == nullptr ? "it is not set" : "it is empty"));
    }
    return search;
}

bool reportInstallRoot(const InstallRootSearch &search, const std::string &provider)
{
    std::string root = search.root;
    if (!root.empty() && root.back() != '/') {
        root += '/';
    }
    // The catalogs this tamlinctl came with, else those built beside the library:
    // <build>/lib/libtamlin.so, <build>/Messages/.
    std::string catalogs = bundledMessageCatalogs();
    if (catalogs.empty()) {
        std::string build = "<build>";
        const size_t file = provider.rfind('/');
        const size_t lib = file == std::string::npos || file == 0 ? std::string::npos : provider.rfind('/', file - 1);
        if (lib != std::string::npos) {
            build = provider.substr(0, lib);
        }
        catalogs = build + "/Messages/libtamlin";
    }
    if (!root.empty() && isDirectory(root)) {
        if (!isDirectory(root + "Messages/libtamlin")) {
            fprintf(stderr,
                    "tamlinctl: warning: the install root %s holds no message catalogs, so the provider can only "
                    "name its messages by their keys; tamlinctl setup links them there, or copy them:\n"
                    "tamlinctl:   mkdir -p %sMessages && cp -r %s %sMessages/\n",
                    root.c_str(), root.c_str(), catalogs.c_str(), root.c_str());
        }
        return true;
    }
    if (root.empty()) {
        fprintf(stderr, "tamlinctl: the provider has no install root, the directory that holds its configuration, "
                        "its message catalogs and its log.\n");
    } else {
        fprintf(stderr, "tamlinctl: the provider's install root %s does not exist.\n", root.c_str());
    }
    fprintf(stderr, "tamlinctl: looked at:\n");
    for (const std::string &place : search.looked) {
        fprintf(stderr, "tamlinctl:   %s\n", place.c_str());
    }
    fprintf(stderr,
            "tamlinctl: to make one and name it in the registry stand-in, run tamlinctl setup (for the root\n"
            "tamlinctl: installed with tamlinctl) or tamlinctl setup --root DIR; to do it by hand, install the\n"
            "tamlinctl: message catalogs into a directory and name it, for example:\n"
            "tamlinctl:   mkdir -p /opt/tamlin/Messages && cp -r %s /opt/tamlin/Messages/\n"
            "tamlinctl:   export QORIN_INSTALL_ROOT=/opt/tamlin/\n"
            "tamlinctl: then write /opt/tamlin/ConfigFiles/tamlin.conf (README.md, \"Installing the provider\").\n",
            catalogs.c_str());
    return false;
}

std::string bundledMessageCatalogs()
{
    char self[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) {
        return {};
    }
    const std::string dir = std::filesystem::path(std::string(self, static_cast<size_t>(n))).parent_path().string();
    for (const std::string &catalogs : {dir + "/" TAMLIN_BIN_TO_MESSAGES, dir + "/../Messages/libtamlin"}) {
        if (std::filesystem::exists(catalogs + "/root.res")) {
            return std::filesystem::path(catalogs).lexically_normal().string();
        }
    }
    return {};
}
