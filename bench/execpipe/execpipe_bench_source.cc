// Writes a given number of bytes to standard output as lines of a given length (line feed
// included), in large writes: the child that bench_execpipe reads from.
#include <unistd.h>

#include <cstdlib>
#include <string>

int main(int argc, char **argv)
{
    if (argc < 3) {
        return 2;
    }
    long long total = atoll(argv[1]);
    size_t line = static_cast<size_t>(atol(argv[2]));
    if (total < 0 || line < 1) {
        return 2;
    }
    // A block of whole lines, about 64 KiB; the last write may cut a line.
    std::string block;
    while (block.size() < 64 * 1024) {
        for (size_t i = 0; i + 1 < line; ++i) {
            block += static_cast<char>('a' + (block.size() + i) % 26);
        }
        block += '\n';
    }
    while (total > 0) {
        size_t size = total < static_cast<long long>(block.size()) ? static_cast<size_t>(total) : block.size();
        ssize_t done = write(STDOUT_FILENO, block.data(), size);
        if (done <= 0) {
            return 1;
        }
        total -= done;
    }
    return 0;
}
