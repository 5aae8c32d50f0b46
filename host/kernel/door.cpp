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

} // namespace maxhost
