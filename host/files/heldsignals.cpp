// Signals that wait while a file is written.
#include "files/heldsignals.h"

namespace maxhost {
namespace {

constexpr int of_failing_writes[] = {SIGPIPE, SIGXFSZ};

// Takes back a signal that has come since it is held.
void drop(int number, const sigset_t &held_before) {
    sigset_t pending, one;
    sigemptyset(&one);
    sigaddset(&one, number);
    int taken = 0;
    if (!sigismember(&held_before, number) && sigpending(&pending) == 0 && sigismember(&pending, number))
        sigwait(&one, &taken);
}

} // namespace

HeldSignals::HeldSignals(std::initializer_list<int> numbers) {
    sigset_t held;
    sigemptyset(&held);
    for (const int number : numbers)
        sigaddset(&held, number);
    for (const int number : of_failing_writes)
        sigaddset(&held, number);
    pthread_sigmask(SIG_BLOCK, &held, &before_);
}

HeldSignals::~HeldSignals() {
    for (const int number : of_failing_writes)
        drop(number, before_);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

} // namespace maxhost
