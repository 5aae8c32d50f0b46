// The door of the API: calls that misuse it are named and refused.
#pragma once

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

} // namespace maxhost
