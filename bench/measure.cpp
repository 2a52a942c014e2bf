// Runs a command and prints its wall time and its processor time, both in microseconds, and its
// peak memory in KiB. A process inherits the peak of the one that started it, so a small program
// must be started by a small one. The command's own standard output is discarded.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <sysexits.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace {

using Clock = std::chrono::steady_clock;

bool Start(char** words, pid_t& process) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const int failure = posix_spawnp(&process, words[0], &actions, nullptr, words, environ);
    posix_spawn_file_actions_destroy(&actions);
    return failure == 0;
}

std::chrono::microseconds ProcessorTime(const rusage& usage) {
    return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

}  // namespace

int main(int count, char** words) {
    if (count < 2) {
        std::fputs("Usage: measure COMMAND [WORD]...\n", stderr);
        return EX_USAGE;
    }
    const Clock::time_point begin = Clock::now();
    pid_t process = 0;
    int status = 0;
    rusage usage{};
    if (!Start(words + 1, process) || wait4(process, &status, 0, &usage) != process) {
        std::fprintf(stderr, "measure: %s cannot be run\n", words[1]);
        return EX_UNAVAILABLE;
    }
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
    std::printf("%lld %lld %ld\n", static_cast<long long>(taken.count()),
                static_cast<long long>(ProcessorTime(usage).count()), usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : EX_SOFTWARE;
}
