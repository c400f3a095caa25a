// The child that the exec pipe tests run. The first argument picks what it does.
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// Unbuffered, so that the order of stdout and stderr writes is the order of the calls.
void put(int fd, const std::string &text)
{
    size_t done = 0;
    while (done < text.size()) {
        ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0) {
            _exit(3);
        }
        done += static_cast<size_t>(n);
    }
}

void out(const std::string &text)
{
    put(STDOUT_FILENO, text);
}

void sleepSeconds(int seconds)
{
    for (int i = 0; i < seconds; ++i) {
        sleep(1);
    }
}

[[noreturn]] void sleepForever()
{
    for (;;) {
        pause();
    }
}

}  // namespace

int main(int argc, char **argv)
{
    std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "exit") {
        return argc > 2 ? atoi(argv[2]) : 0;
    }
    if (mode == "args") {
        for (int i = 2; i < argc; ++i) {
            out(std::string("[") + argv[i] + "]\n");
        }
        return 0;
    }
    if (mode == "nonl") {
        out("first\nlast without line feed");
        return 0;
    }
    if (mode == "crlf") {
        out("one\r\ntwo\r\n\r\nin\rside\r\nends in cr\r");
        return 0;
    }
    if (mode == "long") {
        // A line of the given length in one write, then a short one.
        size_t length = static_cast<size_t>(atol(argv[2]));
        std::string line;
        for (size_t i = 0; i < length; ++i) {
            line += static_cast<char>('a' + i % 26);
        }
        out(line + "\nshort\n");
        return 0;
    }
    if (mode == "interleave") {
        for (int i = 0; i < 5; ++i) {
            put(STDOUT_FILENO, "out " + std::to_string(i) + "\n");
            put(STDERR_FILENO, "err " + std::to_string(i) + "\n");
        }
        return 0;
    }
    if (mode == "silent") {
        // Says one line, then nothing for the given time.
        out("started\n");
        sleepSeconds(atoi(argv[2]));
        out("late\n");
        return 0;
    }
    if (mode == "burst") {
        // Three lines in one write, then silence with the pipe still open.
        out("a\nb\nc\n");
        sleepSeconds(atoi(argv[2]));
        return 0;
    }
    if (mode == "ignore") {
        signal(SIGINT, SIG_IGN);
        signal(SIGTERM, SIG_IGN);
        if (argc > 2 && std::string(argv[2]) == "family") {
            // The grandchild ignores the same signals and stays in the group.
            pid_t grandchild = fork();
            if (grandchild == 0) {
                sleepForever();
            }
            out("grandchild " + std::to_string(grandchild) + "\n");
        } else {
            out("ignoring\n");
        }
        sleepForever();
    }
    if (mode == "pwd") {
        char here[4096];
        out(std::string(getcwd(here, sizeof here) != nullptr ? here : "?") + "\n");
        return 0;
    }
    if (mode == "id") {
        out(std::to_string(getuid()) + " " + std::to_string(getgid()) + " " + std::to_string(getpgrp()) + " " +
            std::to_string(getpid()) + "\n");
        return 0;
    }
    if (mode == "orphan") {
        // Leaves a grandchild behind that keeps the output pipe open.
        pid_t grandchild = fork();
        if (grandchild == 0) {
            sleepSeconds(60);
            _exit(0);
        }
        out("grandchild " + std::to_string(grandchild) + "\n");
        out("done\n");
        return 0;
    }
    if (mode == "stdin") {
        // Reads standard input to its end: only Close ends it.
        char buffer[256];
        while (read(STDIN_FILENO, buffer, sizeof buffer) > 0) {
        }
        return 0;
    }
    fprintf(stderr, "execpipe_child: unknown mode [%s]\n", mode.c_str());
    return 2;
}
