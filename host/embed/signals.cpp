// Signals that end a program.
#include "embed/signals.h"

#include <csignal>
#include <initializer_list>

#include <pthread.h>

namespace maxhost {
namespace {

pthread_t taking_thread;

// Nothing here but what a handler of signals may call.
void pass_on_or_end(int number) {
    if (!pthread_equal(pthread_self(), taking_thread)) {
        pthread_kill(taking_thread, number);
        return;
    }
    signal(number, SIG_DFL);
    raise(number); // comes when the handler is left
}

} // namespace

void take_signals_here() {
    taking_thread = pthread_self();
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = pass_on_or_end;
        action.sa_flags = SA_RESTART;
        sigaction(number, &action, nullptr);
    }
}

} // namespace maxhost
