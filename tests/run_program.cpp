#include "tests/run_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "tests/temporary_device.h"

namespace {

[[noreturn]] void BecomeProgram(const std::vector<std::string>& words, const std::string& home,
                                int output, int errors) {
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    if (!home.empty()) {
        setenv("HOME", home.c_str(), 1);
    }
    std::vector<char*> arguments = {const_cast<char*>("fennelbright")};
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    execv(FENNELBRIGHT_PROGRAM, arguments.data());
    _exit(127);
}

// A pipe whose reader has gone.
int OpenBrokenPipe() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    return ends[1];
}

}  // namespace

Outcome RunProgram(const std::vector<std::string>& words, const std::string& home,
                   bool closedOutput) {
    const TemporaryDevice scratch;
    const std::string outputPath = scratch.path() + "/output";
    const std::string errorsPath = scratch.path() + "/errors";
    constexpr int flags = O_CREAT | O_WRONLY | O_CLOEXEC;
    const platform::Descriptor output(closedOutput ? OpenBrokenPipe()
                                                   : open(outputPath.c_str(), flags, 0600));
    const platform::Descriptor errors(open(errorsPath.c_str(), flags, 0600));
    const pid_t child = fork();
    if (child == 0) {
        BecomeProgram(words, home, output.get(), errors.get());
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(outputPath),
            ReadFile(errorsPath)};
}
