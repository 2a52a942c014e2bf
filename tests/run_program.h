#pragma once

#include <string>
#include <vector>

// What a finished process said and how it ended.
struct Outcome {
    int exitCode;  // -1 when a signal ended it
    std::string output;
    std::string errors;
};

// Runs the built program with these words, and with `home` as the user's home directory if it is
// not empty. With `closedOutput` nobody reads its standard output.
Outcome RunProgram(const std::vector<std::string>& words, const std::string& home = "",
                   bool closedOutput = false);
