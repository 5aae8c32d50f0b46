// Clocks.
#include "kernel/clocks.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <set>

#include "ext_proto.h"
#include "kernel/console.h"
#include "kernel/critical.h"
#include "kernel/frontend.h"
#include "kernel/objects.h"
#include "kernel/outlets.h"

namespace maxhost {
namespace {

// From a millisecond, so that time goes on, to a month.
constexpr double shortest_delay = 1;
constexpr double longest_delay = 1e3 * 3600 * 24 * 31;

struct Sooner {
    bool operator()(const Clock *a, const Clock *b) const {
        return a->due != b->due ? a->due < b->due : a->turn < b->turn;
    }
};

struct Timetable {
    std::mutex mutex; // never held while a task runs
    double now = 0;
    long turns = 0;
    std::set<Clock *, Sooner> due;
};

Timetable &timetable() {
    static auto &the_timetable = *new Timetable;
    return the_timetable;
}

// Takes a clock out of the timetable, whose mutex is held.
void stop(Clock &clock) {
    if (clock.set)
        timetable().due.erase(&clock);
    clock.set = false;
}

void start(Clock &clock, double delay) {
    Timetable &times = timetable();
    std::lock_guard lock(times.mutex);
    stop(clock);
    clock.due = times.now + delay;
    clock.turn = ++times.turns;
    clock.set = guarded("clock_fdelay", false, [&] { return times.due.insert(&clock).second; });
}

// Takes the next clock that is due before or at `until` out, and lets the time be its own; null when there is none.
Clock *take_next(double until) {
    Timetable &times = timetable();
    std::lock_guard lock(times.mutex);
    if (times.due.empty() || (*times.due.begin())->due > until) {
        times.now = std::max(times.now, until);
        return nullptr;
    }
    Clock *next = *times.due.begin();
    stop(*next);
    times.now = next->due;
    return next;
}

// What a clock has begun went too far, and would do so again and again.
void stop_for_good(Clock *clock) {
    if (!record_of(clock)) // its task has freed it
        return;
    {
        std::lock_guard lock(timetable().mutex);
        if (!clock->set)
            return;
        stop(*clock);
    }
    console_error(static_cast<const t_object *>(clock->object), "its clock is stopped");
}

} // namespace

Class *Clock::host_class() {
    static Class *const cls = new_host_class("clock", true);
    return cls;
}

Clock::~Clock() {
    std::lock_guard lock(timetable().mutex);
    stop(*this);
}

double clock_time() {
    std::lock_guard lock(timetable().mutex);
    return timetable().now;
}

bool run_next_clock(double until) {
    Clock *next = take_next(until);
    if (!next)
        return false;
    using Task = void (*)(void *);
    const long ended_before = ended_events();
    reinterpret_cast<Task>(next->task)(next->object);
    expect_no_region("a clock's task");
    if (ended_events() != ended_before)
        stop_for_good(next);
    return true;
}

std::optional<double> next_clock_due() {
    const Timetable &times = timetable();
    std::lock_guard lock(timetable().mutex);
    return times.due.empty() ? std::nullopt : std::optional((*times.due.begin())->due);
}

} // namespace maxhost

using namespace maxhost;

void *clock_new(void *obj, method fn) {
    if (!at_door(obj && fn, "clock_new", "no object or no function"))
        return nullptr;
    auto *clock = guarded("clock_new", static_cast<Clock *>(nullptr), create<Clock>);
    if (!clock)
        return nullptr;
    clock->object = obj;
    clock->task = fn;
    return clock;
}

void clock_fdelay(void *x, double f) {
    auto *clock = expect<Clock>(x, "clock_fdelay");
    if (!clock)
        return;
    start(*clock, std::isnan(f) ? shortest_delay : std::clamp(f, shortest_delay, longest_delay));
    if (front_end().work)
        front_end().work();
}

void clock_unset(void *x) {
    auto *clock = expect<Clock>(x, "clock_unset");
    if (!clock)
        return;
    std::lock_guard lock(timetable().mutex);
    stop(*clock);
}
