// The host's time in Qt's event loop.
#include "hosttime.h"

#include <algorithm>

#include "embed/host.h"

using namespace maxhost;

namespace {

// What a program that stood still makes up for, in milliseconds, and how long it may take at a time.
constexpr double most_made_up = 100;
constexpr qint64 longest_run = 30;

// While clocks are set their time is no older than this: what is set then is due by it.
constexpr double oldest_time = 10;

} // namespace

HostTime::HostTime() {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &HostTime::run);
    since_.start();
}

bool HostTime::run() {
    if (stops_ > 0)
        return true;
    const bool is_drained = run_clocks(drain_queue_for(longest_run));
    arrange_next();
    if (is_drained || stops_ > 0)
        return true;
    tell_of_endless_queue();
    timer_.start(0); // after what a person does in the meantime
    return false;
}

void HostTime::stop() {
    ++stops_;
    timer_.stop();
}

void HostTime::go_on() {
    if (--stops_ > 0)
        return;
    since_.restart();
    QMetaObject::invokeMethod(this, &HostTime::run, Qt::QueuedConnection);
}

bool HostTime::run_clocks(bool is_drained) {
    const double passed = timer_is_idle_ ? 0 : static_cast<double>(since_.nsecsElapsed()) / 1e6;
    since_.restart();
    const double until = clock_time() + std::min(passed, most_made_up);
    while (stops_ == 0 && since_.elapsed() < longest_run && run_next_clock(until))
        is_drained = drain_queue_for(longest_run);
    return is_drained;
}

void HostTime::arrange_next() {
    const std::optional<double> due = next_clock_due();
    timer_is_idle_ = !due || stops_ > 0;
    if (timer_is_idle_)
        return timer_.stop();
    const double passed = static_cast<double>(since_.nsecsElapsed()) / 1e6;
    timer_.start(static_cast<int>(std::clamp(*due - clock_time() - passed, 1.0, oldest_time)));
}
