// The door of the API, and the front end that hears what happens there.
#include "kernel/door.h"

#include <cstdio>
#include <cstdlib>

#include "kernel/frontend.h"

namespace maxhost {

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
    try {
        if (front_end().console)
            front_end().console(ConsoleLine::error, "-", std::string(function) + ": out of memory");
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "maxhost: %s: out of memory\n", function);
    }
}

} // namespace maxhost
