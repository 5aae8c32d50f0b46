// The global critical region: recursive, one for the process.
#include "kernel/critical.h"

#include <mutex>

#include "ext_critical.h"
#include "kernel/door.h"
#include "kernel/trace.h"

namespace maxhost {
namespace {

std::recursive_mutex &global_region() {
    static auto &the_region = *new std::recursive_mutex;
    return the_region;
}

thread_local long depth = 0;

void enter() {
    global_region().lock();
    ++depth;
}

void leave() {
    --depth;
    global_region().unlock();
}

} // namespace

HeldRegion::HeldRegion() { enter(); }
HeldRegion::~HeldRegion() { leave(); }

void expect_no_region(const char *event) {
    if (depth == 0)
        return;
    misuse("critical_enter", std::string("the critical region is still held at the end of ") + event);
    while (depth > 0)
        leave();
}

} // namespace maxhost

using namespace maxhost;

void critical_enter(t_critical x) {
    if (x) {
        pthread_mutex_lock(x);
        return;
    }
    trace(trace_lock, "critical_enter", 0);
    enter();
}

void critical_exit(t_critical x) {
    if (x) {
        pthread_mutex_unlock(x);
        return;
    }
    trace(trace_lock, "critical_exit", 0);
    if (at_door(depth > 0, "critical_exit", "the critical region is not held"))
        leave();
}
