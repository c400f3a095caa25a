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

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "temp_install_root.h"

class ProviderInstall {
public:
    struct Login {
        std::string host, user, password;
    };
    struct Outcome {
        int status;
        std::string output;  // standard output and error together
    };

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
        std::string command = buildDir() + "/bin/evasim " + arguments + " 2>&1";
        Outcome result{-1, ""};
        if (FILE *pipe = popen(command.c_str(), "r")) {
            char buffer[4096];
            size_t n;
            while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
                result.output.append(buffer, n);
            }
            const int status = pclose(pipe);
            result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        return result;
    }

    // The rows of one table of `evasim show <what> --format tsv`, by header name.
    static std::vector<std::map<std::string, std::string>> table(const std::string &what)
    {
        std::vector<std::map<std::string, std::string>> rows;
        std::istringstream in(evasim("show " + what + " --format tsv").output);
        std::string line;
        std::vector<std::string> header;
        while (std::getline(in, line)) {
            if (line.empty() || line[0] == '#') {
                header.clear();
                continue;
            }
            std::vector<std::string> cells;
            std::string cell;
            std::istringstream fields(line);
            while (std::getline(fields, cell, '\t')) {
                cells.push_back(cell);
            }
            if (header.empty()) {
                header = cells;
                continue;
            }
            std::map<std::string, std::string> row;
            for (size_t i = 0; i < header.size(); ++i) {
                row[header[i]] = i < cells.size() ? cells[i] : "";
            }
            rows.push_back(row);
        }
        return rows;
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
