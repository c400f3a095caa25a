// A stand-in for SSSU whose every run is scripted by files in $STANDIN_DIR:
//   out.<n> / out.default   what run n prints (copied as it stands)
//   rc.<n> / rc.default     its exit status (0 when absent)
//   hold                    milliseconds to stay inside the run (to watch the lock)
//   flood                   print this line after the output without end
// It records each run: argv.<n> (one argument a line), script.<n> (the script's text) and
// one line "<pid> <start-ns> <end-ns>" in runs.log. The run number is kept in "count".
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

std::string perRun(const std::string &name, int run, bool &found)
{
    std::string text = slurp(dir + name + "." + std::to_string(run), found);
    if (!found) {
        text = slurp(dir + name + ".default", found);
    }
    return text;
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
    if (argc > 1 && std::strcmp(argv[1], "--help") == 0) {
        std::cout << "usage: sssu_standin \"FILE <script>\"  (scripted by $STANDIN_DIR)\n";
        return 0;
    }
    const char *env = std::getenv("STANDIN_DIR");
    if (env == nullptr) {
        std::cerr << "sssu_standin: STANDIN_DIR is not set\n";
        return 2;
    }
    dir = std::string(env) + "/";
    const long long start = now();
    const int run = nextRun();

    std::ofstream args(dir + "argv." + std::to_string(run));
    for (int i = 1; i < argc; ++i) {
        args << argv[i] << '\n';
    }
    if (argc > 1 && std::strncmp(argv[1], "FILE ", 5) == 0) {
        bool found = false;
        std::string script = slurp(argv[1] + 5, found);
        std::ofstream(dir + "script." + std::to_string(run), std::ios::binary) << (found ? script : "<missing>");
    }

    bool found = false;
    std::string hold = slurp(dir + "hold", found);
    if (found) {
        usleep(static_cast<useconds_t>(std::atoi(hold.c_str())) * 1000);
    }
    std::string out = perRun("out", run, found);
    std::fwrite(out.data(), 1, out.size(), stdout);
    std::string flood = slurp(dir + "flood", found);
    while (found && std::fwrite(flood.data(), 1, flood.size(), stdout) == flood.size()) {
    }
    std::fflush(stdout);
    std::string rc = perRun("rc", run, found);

    std::ofstream log(dir + "runs.log", std::ios::app);
    log << getpid() << ' ' << start << ' ' << now() << '\n';
    return found ? std::atoi(rc.c_str()) : 0;
}
