// Stands where SSSU stands: records each run, then prints what the test laid down for it or
// hands it to the array simulator. Files in $STANDIN_DIR:
//   out.<n> / out.default   what run n prints (copied as it stands)
//   hold                    milliseconds to stay inside the run (to watch the lock)
//   flood                   print this line after the output without end
// Without an output for the run and with $STANDIN_EVASIM set, evasim answers it. Each run is
// recorded: script.<n> (the script byte for byte) and one line "<pid> <start-ns> <end-ns>" in
// runs.log (not for runs evasim answers). The run number is kept in "count".
#include <fcntl.h>
#include <sys/file.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

namespace {

std::string dir;

std::string slurp(const std::string &path, bool &found)
{
    std::ifstream in(path, std::ios::binary);
    found = static_cast<bool>(in);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

long long now()
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<long long>(t.tv_sec) * 1000000000LL + t.tv_nsec;
}

// The count is shared by concurrent runs of tests that don't hold the provider's lock.
int nextRun()
{
    int fd = open((dir + "count").c_str(), O_RDWR | O_CREAT, 0644);
    flock(fd, LOCK_EX);
    char buffer[32] = {0};
    ssize_t got = read(fd, buffer, sizeof buffer - 1);
    int run = (got > 0 ? std::atoi(buffer) : 0) + 1;
    std::string text = std::to_string(run);
    lseek(fd, 0, SEEK_SET);
    if (ftruncate(fd, 0) != 0 || write(fd, text.data(), text.size()) < 0) {
        std::perror("count");
    }
    flock(fd, LOCK_UN);
    close(fd);
    return run;
}

}  // namespace

int main(int argc, char **argv)
{
    const char *env = std::getenv("STANDIN_DIR");
    if (env == nullptr || argc != 2 || std::strncmp(argv[1], "FILE ", 5) != 0) {
        std::cerr << "usage: STANDIN_DIR=... sssu_standin \"FILE <script>\"\n";
        return 2;
    }
    dir = std::string(env) + "/";
    const long long start = now();
    const int run = nextRun();
    bool found = false;
    const std::string script = slurp(argv[1] + 5, found);
    std::ofstream(dir + "script." + std::to_string(run), std::ios::binary) << (found ? script : "<missing>");

    std::string out = slurp(dir + "out." + std::to_string(run), found);
    if (!found) {
        out = slurp(dir + "out.default", found);
    }
    const char *evasim = std::getenv("STANDIN_EVASIM");
    if (!found && evasim != nullptr) {
        execl(evasim, evasim, argv[1], static_cast<char *>(nullptr));
        std::perror("sssu_standin: evasim");
        return 2;
    }
    std::string hold = slurp(dir + "hold", found);
    if (found) {
        usleep(static_cast<useconds_t>(std::atoi(hold.c_str())) * 1000);
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    std::string flood = slurp(dir + "flood", found);
    while (found && std::fwrite(flood.data(), 1, flood.size(), stdout) == flood.size()) {
    }
    std::fflush(stdout);
    std::ofstream(dir + "runs.log", std::ios::app) << getpid() << ' ' << start << ' ' << now() << '\n';
    return 0;
}
