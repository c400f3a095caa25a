// A complete provider install for one test or test suite: a private install root with the
// built message bundles, SSSU played by the array simulator under an SSSU file name, a
// configuration that points at it and holds the logins, and a simulator world loaded from a
// scenario. The provider started in it reaches the simulated arrays as it would real ones.
//
//     ProviderInstall site;                          // small.scn, the login of cv1
//     ASSERT_EQ(provider()->init(host, version), 0);
//     site.evasim("fault https --count 2");
#ifndef PROVIDER_INSTALL_H
#define PROVIDER_INSTALL_H

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "scratch_files.h"
#include "temp_install_root.h"
#include "tsv_rows.h"

namespace tamlin_test {

// The UDID the provider gives a disk: "UDID##HP##HSV##<cell's WWN>##<wwlunid>", upper case.
inline std::string udidOf(const std::string &cellWwn, const std::string &wwlunid)
{
    std::string text = "UDID##HP##HSV##" + cellWwn + "##" + wwlunid;
    for (char &c : text) {
        c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    }
    return text;
}

}  // namespace tamlin_test

class ProviderInstall {
public:
    struct Login {
        std::string host, user, password;
    };
    using Outcome = tamlin_test::CommandRun;  // standard output and error together

    static std::string buildDir() { return tamlin_test::buildDir(); }
    static std::string sourceDir() { return tamlin_test::sourceDir(); }

    // scenario: a path, or a file name below tools/evasim/scenarios/.
    explicit ProviderInstall(const std::vector<Login> &logins = {{"cv1", "admin", "secret"}},
                             const std::string &scenario = "small.scn", int traceLevel = 6) :
        m_logins(logins),
        m_traceLevel(traceLevel)
    {
        m_root.installMessages();
        m_sssuDir = m_root.path("sssu/");
        std::filesystem::create_directories(m_sssuDir);
        std::error_code ignored;
        std::filesystem::create_symlink(buildDir() + "/bin/evasim", m_sssuDir + "sssu_linux_x64", ignored);
        m_root.setEnv("EVASIM_HOME", m_root.path("evasim"));
        const std::string file =
            scenario.find('/') == std::string::npos ? sourceDir() + "/tools/evasim/scenarios/" + scenario : scenario;
        m_loaded = evasim("init --scenario '" + file + "'");
        writeConfig("[CLI_TOOL_INFO]\n\"FILEPATH\"=\"" + m_sssuDir + "\"\n\"FILENAME\"=\"sssu_linux_x64\"\n");
    }

    // Whether the simulator's world was loaded; its report otherwise.
    bool ok() const { return m_root.ok() && m_loaded.status == 0; }
    const std::string &loadReport() const { return m_loaded.output; }

    // Rewrites ConfigFiles/tamlin.conf with the trace level, toolSection and the logins.
    void writeConfig(const std::string &toolSection)
    {
        char level[32];
        std::snprintf(level, sizeof level, "dword:%08x", m_traceLevel);
        std::string conf = "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=" + std::string(level) + "\n\n" + toolSection + "\n";
        for (const Login &login : m_logins) {
            conf += "[MANAGEMENT_APPLIANCE_INFO\\" + login.host + "]\n\"HOSTNAME\"=\"" + login.host +
                    "\"\n\"USERNAME\"=\"" + login.user + "\"\n\"PASSWORD\"=\"" + login.password + "\"\n\n";
        }
        m_root.writeFile("ConfigFiles/tamlin.conf", conf);
    }

    // Runs the simulator's administration with arguments (a shell word list).
    static Outcome evasim(const std::string &arguments)
    {
        return tamlin_test::runCommand(buildDir() + "/bin/evasim " + arguments + " 2>&1");
    }

    // The rows of `evasim show <what> --format tsv`, by column name.
    static std::vector<tamlin_test::TsvRow> table(const std::string &what)
    {
        return tamlin_test::tsvRows(evasim("show " + what + " --format tsv").output);
    }
    // A column of the disk at path, "<no disk>" when there is none.
    static std::string disk(const std::string &path, const std::string &column)
    {
        for (const tamlin_test::TsvRow &row : table("disks")) {
            if (row.at("path") == path) {
                return row.at(column);
            }
        }
        return "<no disk>";
    }
    // Every command of the SSSU runs kept, oldest first: run, exit, seq, outcome, command, answer.
    static std::vector<tamlin_test::TsvRow> history()
    {
        return tamlin_test::tsvRows(evasim("history --last 0 --format tsv").output);
    }

    // All trace log files, joined.
    std::string log() const
    {
        std::string all;
        for (const std::string &name : m_root.list("Logs")) {
            all += m_root.readFile("Logs/" + name);
        }
        return all;
    }

    TempInstallRoot &root() { return m_root; }
    const std::string &sssuDir() const { return m_sssuDir; }

private:
    TempInstallRoot m_root;
    std::vector<Login> m_logins;
    int m_traceLevel;
    std::string m_sssuDir;
    Outcome m_loaded{-1, ""};
};

#endif
