#include "hpeva_commandtempfile.h"

#include <ace/ACE.h>
#include <ace/Dirent.h>
#include <ace/OS_NS_errno.h>
#include <ace/OS_NS_signal.h>
#include <ace/OS_NS_stdlib.h>
#include <ace/OS_NS_string.h>
#include <ace/OS_NS_sys_stat.h>
#include <ace/OS_NS_unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_cliexception.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;

namespace {

const char *const kPrelude = "set option NOCOMMAND_DELAY\n"
                             "set option DISPLAY_WIDTH=200\n"
                             "set option ON_ERROR=EXIT_ON_ERROR\n";

const char kPrefix[] = "omx_fi";
// What mkstemp puts behind the owner's process id and "_".
const size_t kUniqueLength = 6;

std::string scriptDirectory()
{
    const char *tmp = ACE_OS::getenv("TMPDIR");
    std::string dir = (tmp != nullptr && *tmp != '\0') ? std::string(tmp) : std::string("/tmp");
    if (dir.back() != '/') {
        dir += '/';
    }
    return dir;
}

// The owner's process id in a script's name; 0 for any other name.
pid_t ownerOf(const std::string &name)
{
    const size_t prefix = sizeof kPrefix - 1;
    const size_t underscore = name.find('_', prefix);
    if (name.compare(0, prefix, kPrefix) != 0 || underscore == std::string::npos || underscore == prefix ||
        underscore > prefix + 9 || name.size() != underscore + 1 + kUniqueLength) {
        return 0;
    }
    pid_t pid = 0;
    for (size_t i = prefix; i < underscore; ++i) {
        if (name[i] < '0' || name[i] > '9') {
            return 0;
        }
        pid = pid * 10 + (name[i] - '0');
    }
    return pid;
}

bool breaksLine(const std::wstring &value)
{
    return value.find_first_of(L"\r\n") != std::wstring::npos;
}

// The value as one visible line, for the refusal's text.
std::string visible(const std::wstring &value)
{
    std::string text = CFiStringTool::wstr2str(value);
    text = CFiStringTool::searchreplace(text, "\r", "\\r");
    return CFiStringTool::searchreplace(text, "\n", "\\n");
}

[[noreturn]] void refuse(const ACE_WString &command, const std::string &what, int line)
{
    throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, command,
                             what + " holds a line feed or carriage return; the SSSU script was not written",
                             std::vector<std::string>(), __FILE__, line);
}

// Every value is checked before a file exists, so a refused script never reaches the disk.
void checkValues(const SFiCredential *credential, const std::vector<ACE_WString> &commands, const ACE_WString &cell)
{
    if (credential != nullptr) {
        const ACE_WString login(L"select manager");
        if (breaksLine(credential->hostname)) {
            refuse(login, "the manager name \"" + visible(credential->hostname) + "\"", __LINE__);
        }
        if (breaksLine(credential->username)) {
            refuse(login, "the user name \"" + visible(credential->username) + "\"", __LINE__);
        }
        if (breaksLine(credential->password)) {
            // Never the value itself: it is a password.
            refuse(login, "the password of user \"" + visible(credential->username) + "\"", __LINE__);
        }
    }
    const std::wstring cellName(cell.c_str());
    if (breaksLine(cellName)) {
        refuse(ACE_WString(L"select cell"), "the cell name \"" + visible(cellName) + "\"", __LINE__);
    }
    for (const ACE_WString &command : commands) {
        const std::wstring text(command.c_str());
        if (breaksLine(text)) {
            refuse(command, "the command \"" + visible(text) + "\"", __LINE__);
        }
    }
}

}  // namespace

CHpEvaCommandTempFile::CHpEvaCommandTempFile() : m_created(false)
{
    write(nullptr, std::vector<ACE_WString>(), ACE_WString());
}

CHpEvaCommandTempFile::CHpEvaCommandTempFile(const SFiCredential &credential, const ACE_WString &command,
                                             const ACE_WString &cell) :
    m_created(false)
{
    write(&credential, std::vector<ACE_WString>(1, command), cell);
}

CHpEvaCommandTempFile::CHpEvaCommandTempFile(const SFiCredential &credential, const std::vector<ACE_WString> &commands,
                                             const ACE_WString &cell) :
    m_created(false)
{
    write(&credential, commands, cell);
}

CHpEvaCommandTempFile::~CHpEvaCommandTempFile()
{
    if (m_created) {
        ACE_OS::unlink(CFiStringTool::tstr2str(m_path).c_str());
    }
}

int CHpEvaCommandTempFile::removeLeftovers()
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCommandTempFile::removeLeftovers");
    const std::string dir = scriptDirectory();
    ACE_Dirent listing;
    if (listing.open(dir.c_str()) != 0) {
        return 0;
    }
    int removed = 0;
    while (ACE_DIRENT *entry = listing.read()) {
        const std::string name(entry->d_name);
        const pid_t owner = ownerOf(name);
        if (owner <= 0 || owner == ACE_OS::getpid()) {
            continue;
        }
        const std::string path = dir + name;
        ACE_stat info;
        // Only this account's own scripts, and only for a process that is gone: a process
        // of another account answers EPERM, a live one 0.
        if (ACE_OS::lstat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode) || info.st_uid != ACE_OS::geteuid() ||
            ACE_OS::kill(owner, 0) == 0 || errno != ESRCH) {
            continue;
        }
        if (ACE_OS::unlink(path.c_str()) == 0) {
            ++removed;
            log->trace(2, "Removed the SSSU script [%s] that process %d left behind; that process no longer runs",
                       path.c_str(), static_cast<int>(owner));
        }
    }
    return removed;
}

ACE_WString CHpEvaCommandTempFile::getCommandFileOption() const
{
    ACE_WString option(L" \"FILE ");
    option += m_path;
    option += L"\"";
    return option;
}

void CHpEvaCommandTempFile::write(const SFiCredential *credential, const std::vector<ACE_WString> &commands,
                                  const ACE_WString &cell)
{
    CFiTraceLogPtr log = processTraceLog();
    CFiTraceLogFunction function(log, "CHpEvaCommandTempFile::CHpEvaCommandTempFile");
    checkValues(credential, commands, cell);

    std::string script(kPrelude);
    if (credential != nullptr) {
        if (credential->hostname.empty()) {
            log->trace(1, "Invalid array credentials, hostname is empty");
        } else if (credential->username.empty()) {
            log->trace(1, "Invalid array credentials, username is empty");
        } else if (credential->password.empty()) {
            log->trace(1, "Invalid array credentials, password is empty");
        } else {
            script += "select manager " + CFiStringTool::wstr2str(credential->hostname) +
                      " user=" + CFiStringTool::wstr2str(credential->username) +
                      " password=" + CFiStringTool::wstr2str(credential->password) + "\n";
        }
        if (cell.length() > 0) {
            script += "select cell \"" + CFiStringTool::tstr2str(cell) + "\"\n";
            log->trace(3, "select cell [%S].", cell.c_str());
        }
        for (const ACE_WString &command : commands) {
            script += CFiStringTool::tstr2str(command) + "\n";
            log->trace(3, "Command: [%S].", command.c_str());
        }
    }
    script += "exit\n";

    std::string name = scriptDirectory() + kPrefix + std::to_string(ACE_OS::getpid()) + "_XXXXXX";
    std::vector<char> path(name.begin(), name.end());
    path.push_back('\0');
    // mkstemp makes the file with mode 0600, under a name nobody else can take first.
    ACE_HANDLE fd = ACE_OS::mkstemp(path.data());
    if (fd == ACE_INVALID_HANDLE) {
        const int error = ACE_OS::last_error();
        log->trace(1, "Cannot create the SSSU script file [%s]: %s", name.c_str(), ACE_OS::strerror(error));
        throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, ACE_WString(L"(script file)"),
                                 "cannot create the SSSU script file " + name + ": " + ACE_OS::strerror(error),
                                 std::vector<std::string>(), __FILE__, __LINE__);
    }
    m_path = CFiStringTool::str2tstr(path.data());
    m_created = true;
    const ssize_t written = ACE::write_n(fd, script.data(), script.size());
    const int error = written == static_cast<ssize_t>(script.size()) ? 0 : ACE_OS::last_error();
    ACE_OS::close(fd);
    // The password was in this buffer; don't leave it in freed memory.
    std::memset(&script[0], 0, script.size());
    if (error != 0 || written != static_cast<ssize_t>(script.size())) {
        log->trace(1, "Cannot write the SSSU script file [%s]: %s", path.data(), ACE_OS::strerror(error));
        // A throwing constructor runs no destructor: remove the partial file here.
        ACE_OS::unlink(path.data());
        m_created = false;
        throw CHpEvaCliException(CHpEvaCliException::CLI_COMMAND_FAILED, ACE_WString(L"(script file)"),
                                 std::string("cannot write the SSSU script file ") + path.data() + ": " +
                                     ACE_OS::strerror(error),
                                 std::vector<std::string>(), __FILE__, __LINE__);
    }
}
