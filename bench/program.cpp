// Programs that are run to be measured.
#include "program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>

ProgramRun run_program(const std::vector<std::string> &arguments) {
    std::vector<char *> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string &argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const bool started = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    if (!started)
        return {false, 0};
    int status = 0;
    waitpid(child, &status, 0);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    return {WIFEXITED(status) && WEXITSTATUS(status) == 0, seconds.count()};
}
