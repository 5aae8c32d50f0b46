// Signals end a program on the thread that takes them.
#include <gtest/gtest.h>

#include <csignal>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "embed/signals.h"

namespace {

constexpr int held[] = {SIGINT, SIGTERM, SIGHUP};

// Runs a program that holds the signals back on its main thread while another one gets `number`: whether it lived on
// until it let them through, and the signal that ended it.
struct End {
    bool lived_on;
    int signal;
};

End end_of_a_program(int number, bool ignored) {
    int told[2];
    EXPECT_EQ(pipe(told), 0);
    const pid_t program = fork();
    if (program == 0) {
        if (ignored)
            signal(number, SIG_IGN);
        maxhost::take_signals_here();
        sigset_t all;
        sigemptyset(&all);
        for (const int each : held)
            sigaddset(&all, each);
        sigset_t before;
        pthread_sigmask(SIG_BLOCK, &all, &before);
        std::thread([&] {
            pthread_sigmask(SIG_SETMASK, &before, nullptr);
            raise(number);
        }).join();
        const bool is_told = write(told[1], "", 1) == 1;
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        _exit(is_told ? 0 : 1);
    }
    close(told[1]);
    char byte;
    const bool lived_on = read(told[0], &byte, 1) == 1;
    close(told[0]);
    int status = 0;
    waitpid(program, &status, 0);
    return {lived_on, WIFSIGNALED(status) ? WTERMSIG(status) : 0};
}

TEST(Signals, EndTheProgramWhenTheMainThreadLetsThemThrough) {
    for (const int number : held) {
        const End end = end_of_a_program(number, false);
        EXPECT_TRUE(end.lived_on) << number;
        EXPECT_EQ(end.signal, number);
    }
}

TEST(Signals, ThatAreIgnoredStayIgnored) {
    for (const int number : held)
        EXPECT_EQ(end_of_a_program(number, true).signal, 0) << number;
}

} // namespace
