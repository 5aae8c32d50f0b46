// The door of the API, and the front end that hears what happens there.
#include "kernel/door.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "kernel/frontend.h"

namespace maxhost {
namespace {

// Room for the line that tells of it, taken at once: when it is needed there is none to be had.
struct RanOutLine {
    std::mutex mutex;
    std::string text = std::string(250, ' ');
};
RanOutLine &ran_out_line = *new RanOutLine;

// False when the front end runs out of memory as well.
bool tell_the_console(const char *function) noexcept {
    const std::unique_lock lock(ran_out_line.mutex, std::try_to_lock);
    if (!lock)
        return false;
    try {
        front_end().console(ConsoleLine::error, "-", ran_out_line.text.assign(function) += ": out of memory");
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
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
