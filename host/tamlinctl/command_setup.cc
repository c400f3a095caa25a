// tamlinctl setup: an administrator's first run. It makes or finds the install root, names it in
// the registry stand-in, writes the SSSU location and the Command View logins into tamlin.conf
// through the kit's configuration store (so that nothing else in either file changes), and
// ends with check and enclosures.
#include <pwd.h>
#include <signal.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "cficonfiguration.h"
#include "cficonfigurationpathtool.h"
#include "cfistringtool.h"
#include "commands.h"
#include "install_root.h"
#include "provider_session.h"
#include "qorinutil.h"

using namespace qorin_pdk_4_4;
namespace fs = std::filesystem;

namespace {

const char kServersSection[] = "MANAGEMENT_APPLIANCE_INFO";
// The provider's own search, in its order.
const char *const kSssuNames[] = {"sssu_linux_x64", "sssu_linux_x86", "sssu_linux_ia64", "sssu", "SSSU"};
const char *const kSssuDirs[] = {"HP/SSSU/", "Hewlett-Packard/Sanworks/Element Manager for StorageWorks HSV/Bridge/"};

struct Server {
    std::string host;
    std::string user;
    std::string password;
};

// Why setup stopped; it is printed as "tamlinctl setup: <text>".
struct SetupError {
    std::string text;
};

ACE_WString wide(const std::string &text)
{
    return CFiStringTool::str2tstr(text);
}

std::string narrow(const ACE_WString &text)
{
    return CFiStringTool::tstr2str(text);
}

std::string withSlash(std::string path)
{
    if (!path.empty() && path.back() != '/') {
        path += '/';
    }
    return path;
}

std::string exeDir()
{
    char self[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) {
        return ".";
    }
    return fs::path(std::string(self, static_cast<size_t>(n))).parent_path().string();
}

bool isDir(const std::string &path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isRunnable(const std::string &path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

// The install root laid out by the install this tamlinctl belongs to, if it is one.
std::string packagedRoot()
{
    const std::string root = fs::path(exeDir() + "/" TAMLIN_BIN_TO_ROOT).lexically_normal().string();
    return isDir(root + "/ConfigFiles") && isDir(root + "/Messages/libtamlin") ? withSlash(root) : std::string();
}

// A configuration file read whole, or nothing when it doesn't exist yet. One that exists but
// can't be read is the administrator's to mend: it is never written over.
void load(CFiConfiguration &config, const std::string &path)
{
    if (access(path.c_str(), F_OK) != 0) {
        return;
    }
    const fs::path file(path);
    if (config.importConfig(wide(withSlash(file.parent_path().string())).c_str(),
                            wide(file.filename().string()).c_str()) != 0) {
        const std::string where =
            config.importLine() != 0 ? path + ", line " + std::to_string(config.importLine()) : path;
        throw SetupError{where + ": " + config.importProblem() + "; mend it and run setup again: nothing was changed"};
    }
}

void save(CFiConfiguration &config, const std::string &path)
{
    if (config.exportConfig() != 0) {
        throw SetupError{"could not write " + path + ": " + narrow(config.getLastError().getText())};
    }
}

std::string stringValue(CFiConfiguration &config, const wchar_t *name)
{
    ACE_WString value;
    return config.getStringValue(name, value) == 0 ? narrow(value) : std::string();
}

// The install root to set up: the one given, else the one the registry names, else the one
// installed with this tamlinctl.
std::string chooseRoot(const std::optional<std::string> &given, std::string &how)
{
    if (given) {
        how = "given";
        return withSlash(fs::absolute(*given).lexically_normal().string());
    }
    ACE_WString named;
    if (CFiConfigurationPathTool::getInstallPath(named) == 0 && named.length() != 0) {
        how = "named by " + narrow(CFiConfigurationPathTool::registryFile());
        return withSlash(narrow(named));
    }
    const std::string packaged = packagedRoot();
    if (!packaged.empty()) {
        how = "as installed";
        return packaged;
    }
    throw SetupError{"no install root: give one with --root DIR (a directory for the provider's settings, "
                     "message catalogs, log and LUN records)"};
}

void makeRoot(const std::string &root)
{
    std::error_code error;
    for (const char *dir : {"", "ConfigFiles", "Logs", "CacheFiles", "Messages"}) {
        const std::string path = root + dir;
        if (!isDir(path) && !fs::create_directories(path, error) && !isDir(path)) {
            throw SetupError{"could not make " + path + ": " + error.message()};
        }
    }
    const std::string messages = root + "Messages/libtamlin";
    if (fs::exists(messages)) {
        return;
    }
    const std::string bundles = bundledMessageCatalogs();
    if (bundles.empty()) {
        throw SetupError{"the message catalogs of this tamlinctl are missing; reinstall it"};
    }
    // A link, so that the catalogs of a newer install serve at once.
    fs::create_directory_symlink(bundles, messages, error);
    if (error) {
        throw SetupError{"could not link " + messages + " to " + bundles + ": " + error.message()};
    }
}

// Names the root in the registry stand-in, keeping everything else the file holds. Returns
// what it named before, if that was something else.
std::string writeRegistry(const std::string &root, std::string &file)
{
    file = narrow(CFiConfigurationPathTool::registryFile());
    const bool existed = access(file.c_str(), F_OK) == 0;
    CFiConfiguration registry(wide(withSlash(fs::path(file).parent_path().string())).c_str(),
                              wide(fs::path(file).filename().string()).c_str(), false);
    load(registry, file);
    const std::string key = CFiConfigurationPathTool::installKey();
    ACE_Configuration_Section_Key section;
    if (registry.openSection(wide(key).c_str(), section, 1) != 0) {
        throw SetupError{"could not make [" + key + "] in " + file};
    }
    const std::string before = stringValue(registry, L"InstallDir64");
    if (before == root) {
        return {};
    }
    std::error_code error;
    fs::create_directories(fs::path(file).parent_path(), error);
    registry.setStringValue(L"InstallDir64", wide(root));
    save(registry, file);
    // Every account that runs the provider reads it, and it holds no secret.
    if (!existed) {
        chmod(file.c_str(), 0644);
    }
    return before;
}

// SSSU: the path given (a file, or a directory to search), else the one tamlin.conf names if
// it is there, else the provider's own search.
std::string findSssu(const std::optional<std::string> &given, CFiConfiguration &config, std::string &how)
{
    auto search = [](const std::string &dir) -> std::string {
        for (const char *name : kSssuNames) {
            if (isRunnable(withSlash(dir) + name)) {
                return withSlash(dir) + name;
            }
        }
        return {};
    };
    if (given) {
        const std::string path = fs::absolute(*given).lexically_normal().string();
        const std::string found = isDir(path) ? search(path) : isRunnable(path) ? path : std::string();
        if (found.empty()) {
            throw SetupError{isDir(path) ? "no SSSU in " + path +
                                               " (looked for sssu_linux_x64, sssu_linux_x86, "
                                               "sssu_linux_ia64, sssu, SSSU)"
                                         : path + " is no program that can be run"};
        }
        how = "given";
        return found;
    }
    ACE_Configuration_Section_Key section;
    if (config.openSection(L"CLI_TOOL_INFO", section, 0) == 0) {
        const std::string configured = withSlash(stringValue(config, L"FILEPATH")) + stringValue(config, L"FILENAME");
        if (isRunnable(configured)) {
            how = "as configured";
            return configured;
        }
    }
    ACE_WString programFiles;
    CFiConfigurationPathTool::getProgramFilesDir(programFiles);
    std::string looked;
    for (const char *dir : kSssuDirs) {
        const std::string path = withSlash(narrow(programFiles)) + dir;
        const std::string found = search(path);
        if (!found.empty()) {
            how = "found";
            return found;
        }
        looked += (looked.empty() ? "" : " and ") + path;
    }
    throw SetupError{"SSSU was not found in " + looked + "; install it, or give its path with --sssu PATH"};
}

// Asks on the terminal without echo, or reads a line of standard input.
struct termios savedTerminal;
void restoreTerminal(int signal)
{
    tcsetattr(STDIN_FILENO, TCSANOW, &savedTerminal);
    ::signal(signal, SIG_DFL);
    raise(signal);
}

std::string readPassword(const Server &server)
{
    std::string password;
    if (isatty(STDIN_FILENO)) {
        fprintf(stderr, "Password of %s on %s: ", server.user.c_str(), server.host.c_str());
        fflush(stderr);
        tcgetattr(STDIN_FILENO, &savedTerminal);
        struct termios quiet = savedTerminal;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        auto previous = signal(SIGINT, restoreTerminal);
        tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
        const bool read = static_cast<bool>(std::getline(std::cin, password));
        tcsetattr(STDIN_FILENO, TCSANOW, &savedTerminal);
        signal(SIGINT, previous);
        fputc('\n', stderr);
        if (!read) {
            throw SetupError{"no password was given for " + server.user + " on " + server.host};
        }
    } else if (!std::getline(std::cin, password)) {
        throw SetupError{"standard input holds no password for " + server.user + " on " + server.host +
                         " (one line per --server, in order)"};
    }
    if (!password.empty() && password.back() == '\r') {
        password.pop_back();
    }
    if (password.empty() || password == "<none>") {
        throw SetupError{"the password of " + server.user + " on " + server.host +
                         " is empty, which the provider takes for no login"};
    }
    return password;
}

// The section of a server: the one whose HOSTNAME it is (in any letter case), else a new one
// named after it. Says whether the server was there already.
bool writeServer(CFiConfiguration &config, const Server &server)
{
    ACE_Configuration_Section_Key parent;
    if (config.openSection(wide(kServersSection).c_str(), parent, 1) != 0) {
        throw SetupError{std::string("could not make [") + kServersSection + "]"};
    }
    std::vector<ACE_WString> names = config.enumerateSections(parent);
    std::optional<ACE_WString> found;
    for (const ACE_WString &name : names) {
        ACE_Configuration_Section_Key key;
        if (config.openSection(parent, name.c_str(), key, 0) == 0 &&
            strcasecmp(stringValue(config, L"HOSTNAME").c_str(), server.host.c_str()) == 0) {
            found = name;
            break;
        }
    }
    ACE_WString name = found ? *found : wide(server.host);
    for (int n = 2; !found && std::find(names.begin(), names.end(), name) != names.end(); ++n) {
        name = wide(server.host + "-" + std::to_string(n));
    }
    ACE_Configuration_Section_Key key;
    if (config.openSection(parent, name.c_str(), key, 1) != 0) {
        throw SetupError{"could not make the section of " + server.host};
    }
    config.setStringValue(L"HOSTNAME", wide(server.host));
    config.setStringValue(L"USERNAME", wide(server.user));
    config.setStringValue(L"PASSWORD", wide(server.password));
    return found.has_value();
}

// The provider runs under the backup service's account, which must write its log, its LUN
// records and its settings.
void handOver(const std::string &root, const std::string &account)
{
    struct passwd *entry = getpwnam(account.c_str());
    if (entry == nullptr) {
        throw SetupError{"there is no account " + account};
    }
    for (const char *path : {"ConfigFiles", "ConfigFiles/tamlin.conf", "Logs", "CacheFiles"}) {
        if (chown((root + path).c_str(), entry->pw_uid, entry->pw_gid) != 0) {
            throw SetupError{"could not give " + root + path + " to " + account + ": " + strerror(errno)};
        }
    }
}

int setup(CliOptions &options, cliutil::Args &args)
{
    // Asked for first, so that the refusal is what is shown, never the word that follows.
    for (const std::string &word : options.args) {
        if (word == "--password" || word.rfind("--password=", 0) == 0) {
            args.fail("passwords are never taken from the command line: setup asks for each on the terminal, or "
                      "reads one line per --server from standard input");
        }
    }
    const std::optional<std::string> rootGiven = args.value("--root");
    const std::optional<std::string> sssuGiven = args.value("--sssu");
    const std::optional<std::string> owner = args.value("--owner");
    const std::vector<std::string> hosts = args.values("--server");
    const std::vector<std::string> users = args.values("--user");
    const bool noCheck = args.flag("--no-check");
    const std::vector<std::string> words = args.positional();
    if (!words.empty()) {
        args.fail("unexpected argument '" + words.front() + "'");
    }
    if (users.size() > 1 && users.size() != hosts.size()) {
        args.fail("give one --user for every --server, or one for all");
    }
    if (!users.empty() && hosts.empty()) {
        args.fail("--user needs --server");
    }
    if (!hosts.empty() && users.empty()) {
        args.fail("--server needs --user");
    }
    // A name that can't stand in the settings as given is refused here, before anything is asked
    // or changed; a user may be DOMAIN\name, a host name never holds a section's brackets.
    auto hasBlankOrControl = [](const std::string &text) {
        return std::any_of(text.begin(), text.end(),
                           [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == '\x7f'; });
    };
    for (const std::string &host : hosts) {
        if (host.empty() || hasBlankOrControl(host) || host.find_first_of("\\[]\"") != std::string::npos) {
            args.fail("--server '" + host + "' is no host name");
        }
    }
    for (const std::string &user : users) {
        if (user.empty() || hasBlankOrControl(user)) {
            args.fail("--user '" + user + "' is no account name");
        }
    }
    if (options.json) {
        args.fail("setup has no --json output; run tamlinctl --json check afterwards");
    }
    if (!finishArgs(args, "setup")) {
        return ProviderSession::kExitUsage;
    }

    if (owner && getpwnam(owner->c_str()) == nullptr) {
        throw SetupError{"there is no account " + *owner + " to give the settings to; nothing was changed"};
    }

    std::string rootHow;
    const std::string root = chooseRoot(rootGiven, rootHow);
    const std::string confPath = root + "ConfigFiles/tamlin.conf";
    CFiConfiguration config(wide(root + "ConfigFiles/").c_str(), L"tamlin.conf", false);
    load(config, confPath);
    std::string sssuHow;
    const std::string sssu = findSssu(sssuGiven, config, sssuHow);
    std::vector<Server> servers;
    for (size_t i = 0; i < hosts.size(); ++i) {
        servers.push_back({hosts[i], users.size() == 1 ? users[0] : users[i], ""});
    }
    // Every question first: a setup stopped at a prompt has changed nothing.
    for (Server &server : servers) {
        server.password = readPassword(server);
    }

    makeRoot(root);
    fprintf(options.out, "install root  %s (%s)\n", root.c_str(), rootHow.c_str());
    std::string registryFile;
    const std::string before = writeRegistry(root, registryFile);
    fprintf(options.out, "registry      %s: InstallDir64 of [%s]%s\n", registryFile.c_str(),
            CFiConfigurationPathTool::installKey().c_str(), before.empty() ? "" : (" (was " + before + ")").c_str());

    // A file that is about to hold passwords is made private before they are in it.
    struct stat info {};
    if (stat(confPath.c_str(), &info) == 0 && (info.st_mode & 077) != 0) {
        if (chmod(confPath.c_str(), info.st_mode & 0700) != 0) {
            throw SetupError{"could not make " + confPath + " private: " + strerror(errno)};
        }
        fprintf(options.out, "settings      %s was readable by others; it is the owner's alone now\n",
                confPath.c_str());
    }
    ACE_Configuration_Section_Key section;
    config.openSection(L"CLI_TOOL_INFO", section, 1);
    config.setStringValue(L"FILEPATH", wide(withSlash(fs::path(sssu).parent_path().string())));
    config.setStringValue(L"FILENAME", wide(fs::path(sssu).filename().string()));
    fprintf(options.out, "SSSU          %s (%s)\n", sssu.c_str(), sssuHow.c_str());
    for (const Server &server : servers) {
        const bool known = writeServer(config, server);
        fprintf(options.out, "server        %s, user %s (%s)\n", server.host.c_str(), server.user.c_str(),
                known ? "login replaced" : "added");
    }
    save(config, confPath);
    if (owner) {
        handOver(root, *owner);
    }
    fprintf(options.out, "settings      %s\n", confPath.c_str());
    if (noCheck) {
        return ProviderSession::kExitOk;
    }

    options.args.clear();
    fprintf(options.out, "\n$ tamlinctl check\n");
    fflush(options.out);
    int status = runCheck(options);
    if (status != ProviderSession::kExitOk) {
        return status;
    }
    fprintf(options.out, "\n$ tamlinctl enclosures\n");
    fflush(options.out);
    return runEnclosures(options);
}

}  // namespace

int runSetup(CliOptions &options)
{
    cliutil::Args args(options.args);
    try {
        return setup(options, args);
    } catch (const SetupError &error) {
        fprintf(stderr, "tamlinctl setup: %s\n", error.text.c_str());
        return ProviderSession::kExitFailed;
    } catch (const std::exception &error) {
        fprintf(stderr, "tamlinctl setup: %s\n", error.what());
        return ProviderSession::kExitFailed;
    }
}
