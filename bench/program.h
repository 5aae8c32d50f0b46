// Programs that are run to be measured.
#pragma once

#include <string>
#include <vector>

struct ProgramRun {
    bool succeeded; // was found, and ended with the status 0
    double seconds;
};

// Runs a program, found in PATH or by its full path, with its output thrown away.
ProgramRun run_program(const std::vector<std::string> &arguments);
