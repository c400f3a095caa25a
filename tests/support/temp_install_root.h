// A private install root for one test: a fresh directory that QORIN_INSTALL_ROOT names, a
// registry stand-in (QORIN_REGISTRY) and a credential blob (QORIN_CREDENTIAL_BLOB) inside it,
// neither of which exists until the test writes it. The machine's /etc/qorin is never read.
// Everything is removed and the environment restored when the object goes.
//
//     TempInstallRoot root;
//     root.installMessages();                       // the built bundles under Messages/
//     root.writeFile("ConfigFiles/tamlin.conf", "...");
//     EXPECT_TRUE(root.exists("Logs/"));
#ifndef TEMP_INSTALL_ROOT_H
#define TEMP_INSTALL_ROOT_H

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "test_paths.h"

namespace tamlin_test {

// Environment variables set for the life of this object: each gets its value, or its absence,
// back at the end.
class EnvScope {
public:
    EnvScope() = default;
    EnvScope(const std::string &name, const std::optional<std::string> &value) { set(name, value); }
    ~EnvScope()
    {
        for (const auto &saved : m_saved) {
            if (saved.second) {
                setenv(saved.first.c_str(), saved.second->c_str(), 1);
            } else {
                unsetenv(saved.first.c_str());
            }
        }
    }
    EnvScope(const EnvScope &) = delete;
    EnvScope &operator=(const EnvScope &) = delete;

    // Sets name to value; no value unsets it.
    void set(const std::string &name, const std::optional<std::string> &value)
    {
        if (m_saved.count(name) == 0) {
            const char *old = getenv(name.c_str());
            m_saved[name] = old != nullptr ? std::optional<std::string>(old) : std::nullopt;
        }
        if (value) {
            setenv(name.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name.c_str());
        }
    }

private:
    std::map<std::string, std::optional<std::string>> m_saved;
};

}  // namespace tamlin_test

class TempInstallRoot {
public:
    TempInstallRoot()
    {
        std::string pattern = std::filesystem::temp_directory_path().string() + "/tamlin-root-XXXXXX";
        std::vector<char> buffer(pattern.begin(), pattern.end());
        buffer.push_back('\0');
        if (mkdtemp(buffer.data()) != nullptr) {
            m_dir = std::string(buffer.data()) + "/";
        }
        setEnv("QORIN_INSTALL_ROOT", m_dir);
        setEnv("QORIN_REGISTRY", m_dir + "registry.conf");
        setEnv("QORIN_CREDENTIAL_BLOB", m_dir + "credentials.blob");
    }

    ~TempInstallRoot()
    {
        std::error_code ignored;
        if (!m_dir.empty()) {
            std::filesystem::remove_all(m_dir, ignored);
        }
    }

    TempInstallRoot(const TempInstallRoot &) = delete;
    TempInstallRoot &operator=(const TempInstallRoot &) = delete;

    bool ok() const { return !m_dir.empty(); }
    // The root, ending in "/".
    const std::string &dir() const { return m_dir; }
    std::string path(const std::string &relative) const { return m_dir + relative; }
    std::string registryFile() const { return path("registry.conf"); }
    std::string credentialBlobFile() const { return path("credentials.blob"); }

    // Today's suffix of the trace log's name, "mmddyy" in local time.
    static std::string logDate()
    {
        time_t now = time(nullptr);
        struct tm local;
        localtime_r(&now, &local);
        char text[16];
        strftime(text, sizeof text, "%m%d%y", &local);
        return text;
    }

    bool exists(const std::string &relative) const { return std::filesystem::exists(path(relative)); }

    // Writes relative below the root, creating its directories.
    void writeFile(const std::string &relative, const std::string &content) const
    {
        std::filesystem::path target(path(relative));
        std::filesystem::create_directories(target.parent_path());
        std::ofstream(target, std::ios::binary | std::ios::trunc) << content;
    }

    std::string readFile(const std::string &relative) const
    {
        std::ifstream in(path(relative), std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        return content.str();
    }

    // Names (not paths) of the entries of a directory below the root, sorted.
    std::vector<std::string> list(const std::string &relative) const
    {
        std::vector<std::string> names;
        std::error_code error;
        for (const auto &entry : std::filesystem::directory_iterator(path(relative), error)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    // Copies the bundles the build compiled (<build>/Messages/libtamlin) to Messages/.
    bool installMessages() const
    {
        std::filesystem::path from = std::filesystem::path(tamlin_test::buildDir()) / "Messages" / "libtamlin";
        std::error_code error;
        std::filesystem::create_directories(path("Messages/libtamlin"), error);
        std::filesystem::copy(
            from, path("Messages/libtamlin"),
            std::filesystem::copy_options::overwrite_existing | std::filesystem::copy_options::recursive, error);
        return !error && exists("Messages/libtamlin/root.res");
    }

    // Sets a variable for the life of this object (null unsets it).
    void setEnv(const std::string &name, const std::optional<std::string> &value) { m_env.set(name, value); }

private:
    tamlin_test::EnvScope m_env;
    std::string m_dir;
};

#endif
