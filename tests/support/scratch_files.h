// Private scratch directories and whole-file reads and writes for tests.
#ifndef SCRATCH_FILES_H
#define SCRATCH_FILES_H

#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace tamlin_test {

// A new directory "/tmp/tamlin-<tag>-XXXXXX"; empty when none could be made.
inline std::string makeTempDir(const char *tag)
{
    std::string pattern = std::string("/tmp/tamlin-") + tag + "-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const char *made = mkdtemp(buffer.data());
    return made != nullptr ? std::string(made) : std::string();
}

// A shell command's standard output and exit status (-1 when it did not exit).
struct CommandRun {
    int status;
    std::string output;
};

inline CommandRun runCommand(const std::string &command)
{
    CommandRun run{-1, ""};
    if (FILE *pipe = popen(command.c_str(), "r")) {
        char buffer[4096];
        size_t n;
        while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
            run.output.append(buffer, n);
        }
        const int status = pclose(pipe);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    return run;
}

inline std::string capture(const std::string &command)
{
    return runCommand(command).output;
}

inline void removeTree(const std::string &dir)
{
    if (!dir.empty()) {
        capture("rm -rf '" + dir + "'");
    }
}

inline std::string readFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void writeFile(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// Names of the entries of dir, without "." and "..", in directory order.
inline std::vector<std::string> filesIn(const std::string &dir)
{
    std::vector<std::string> names;
    if (DIR *d = opendir(dir.c_str())) {
        while (dirent *e = readdir(d)) {
            std::string name(e->d_name);
            if (name != "." && name != "..") {
                names.push_back(name);
            }
        }
        closedir(d);
    }
    return names;
}

}  // namespace tamlin_test

#endif
