// Clocks: tasks for later, on a time that passes only when the program says so.
#pragma once

#include <optional>

#include "kernel/classes.h"
#include "kernel/export.h"

namespace maxhost {

// Milliseconds that have passed since the program began. Main thread, as the next one.
MAXHOST_EMBED double clock_time();

// Lets time pass up to the next task that is due before or at `until`, and runs it. False when none is; then it is
// `until`. Time never goes back. A clock whose task began an event that went too far is stopped, and the console says so.
MAXHOST_EMBED bool run_next_clock(double until);

// When the next task is due; nothing when none is. Any thread.
MAXHOST_EMBED std::optional<double> next_clock_due();

struct Clock : t_object {
    void *object = nullptr;
    method task = nullptr;
    bool set = false;
    double due = 0;
    long turn = 0; // among those that are due at the same time

    ~Clock();
    static Class *host_class();
    static constexpr const char *kind_name = "clock";
};

} // namespace maxhost
