// The door of the API, and the front end that hears what happens there.
#include "kernel/door.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "kernel/frontend.h"

namespace maxhost {
namespace {

// Room for the line that tells of it, taken at once: when it is needed there is none to be had.
std::string &ran_out_line = *new std::string(250, ' ');
std::atomic_flag ran_out_line_in_use;

// False when the front end runs out of memory as well, or is told already.
bool tell_the_console(const char *function) noexcept {
    if (ran_out_line_in_use.test_and_set())
        return false;
    bool is_told = true;
    try {
        front_end().console(ConsoleLine::error, "-", ran_out_line.assign(function) += ": out of memory");
    } catch (const std::bad_alloc &) {
        is_told = false;
    }
    ran_out_line_in_use.clear();
    return is_told;
}

} // namespace

FrontEnd &front_end() {
    static auto &the_front_end = *new FrontEnd;
    return the_front_end;
}

void misuse(const char *function, const std::string &reason) {
    if (front_end().misuse) {
        front_end().misuse(function, reason);
        return;
    }
    std::fprintf(stderr, "maxhost: %s: %s\n", function, reason.c_str());
    std::abort();
}

void memory_ran_out(const char *function) noexcept {
    if (front_end().console && !tell_the_console(function))
        std::fprintf(stderr, "maxhost: %s: out of memory\n", function);
}

} // namespace maxhost
