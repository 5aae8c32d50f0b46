// The door of the API: calls that misuse it are named and refused, and no exception leaves it.
#pragma once

#include <new>
#include <string>

namespace maxhost {

// Reports that `function` was misused. Returns only when the front end takes such reports; the caller then refuses.
void misuse(const char *function, const std::string &reason);

// True when `fine`; otherwise reports and is false.
inline bool at_door(bool fine, const char *function, const char *reason) {
    if (!fine)
        misuse(function, reason);
    return fine;
}

// Says on the console that memory has run out in `function`.
void memory_ran_out(const char *function) noexcept;

// What `call` gives, or `otherwise`, with a line on the console, when memory runs out in it: the caller may be no C++.
template <typename Result, typename Call>
Result guarded(const char *function, Result otherwise, const Call &call) noexcept {
    try {
        return call();
    } catch (const std::bad_alloc &) {
        memory_ran_out(function);
        return otherwise;
    }
}

template <typename Call> void guarded(const char *function, const Call &call) noexcept {
    try {
        call();
    } catch (const std::bad_alloc &) {
        memory_ran_out(function);
    }
}

} // namespace maxhost
