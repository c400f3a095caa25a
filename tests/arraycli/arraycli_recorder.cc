// Stands where SSSU stands and records each script exactly as it reaches the tool, then
// either answers for the array with evasim or prints an answer the test laid down.
//   $ARRAYCLI_DIR/count           runs so far
//   $ARRAYCLI_DIR/script.<n>      the script of run n, byte for byte
//   $ARRAYCLI_DIR/out.<n>         if present, printed instead of running evasim
//   $ARRAYCLI_EVASIM              the simulator to hand the run to
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

namespace {

std::string slurp(const std::string &path, bool &found)
{
    std::ifstream in(path, std::ios::binary);
    found = static_cast<bool>(in);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void spit(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary) << text;
}

}  // namespace

int main(int argc, char **argv)
{
    const char *dirEnv = std::getenv("ARRAYCLI_DIR");
    const char *evasim = std::getenv("ARRAYCLI_EVASIM");
    if (dirEnv == nullptr || argc != 2 || std::strncmp(argv[1], "FILE ", 5) != 0) {
        std::cerr << "usage: ARRAYCLI_DIR=... arraycli_recorder \"FILE <script>\"\n";
        return 2;
    }
    const std::string dir = std::string(dirEnv) + "/";
    // The provider holds its SSSU lock around each run, so runs never overlap here.
    bool found = false;
    const int run = std::atoi(slurp(dir + "count", found).c_str()) + 1;
    spit(dir + "count", std::to_string(run));
    spit(dir + "script." + std::to_string(run), slurp(argv[1] + 5, found));

    const std::string canned = slurp(dir + "out." + std::to_string(run), found);
    if (found) {
        std::cout << canned;
        return 0;
    }
    if (evasim == nullptr) {
        std::cerr << "arraycli_recorder: ARRAYCLI_EVASIM is not set\n";
        return 2;
    }
    execl(evasim, evasim, argv[1], static_cast<char *>(nullptr));
    std::perror("arraycli_recorder: evasim");
    return 2;
}
