// The scheduler thread.
#include "kernel/scheduler.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <shared_mutex>
#include <thread>

#include "kernel/critical.h"

namespace maxhost {
namespace {

struct Scheduler {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> jobs;
    bool busy = false;
    bool ending = false;
    std::thread thread;
    std::shared_mutex delivering; // shared: a job runs; exclusive: objects come or go
};

Scheduler &scheduler() {
    static auto &the_scheduler = *new Scheduler;
    return the_scheduler;
}

thread_local bool is_scheduler_thread = false;

void run_jobs(Scheduler &s) {
    is_scheduler_thread = true;
    std::unique_lock lock(s.mutex);
    while (true) {
        s.changed.wait(lock, [&] { return s.ending || !s.jobs.empty(); });
        if (s.jobs.empty())
            return;
        auto job = std::move(s.jobs.front());
        s.jobs.pop_front();
        s.busy = true;
        lock.unlock();
        {
            std::shared_lock delivering(s.delivering);
            job();
            expect_no_region("a message on the scheduler thread");
        }
        lock.lock();
        s.busy = false;
        s.changed.notify_all();
    }
}

} // namespace

void post_to_scheduler(std::function<void()> job) {
    Scheduler &s = scheduler();
    std::lock_guard lock(s.mutex);
    if (!s.thread.joinable())
        s.thread = std::thread(run_jobs, std::ref(s));
    s.jobs.push_back(std::move(job));
    s.changed.notify_all();
}

void wait_for_scheduler() {
    Scheduler &s = scheduler();
    std::unique_lock lock(s.mutex);
    s.changed.wait(lock, [&] { return s.jobs.empty() && !s.busy; });
}

void stop_scheduler() {
    Scheduler &s = scheduler();
    {
        std::lock_guard lock(s.mutex);
        s.ending = true;
        s.changed.notify_all();
    }
    if (s.thread.joinable())
        s.thread.join();
    s.thread = std::thread();
    s.ending = false;
}

bool on_scheduler_thread() { return is_scheduler_thread; }

void between_deliveries(const std::function<void()> &change) {
    std::unique_lock lock(scheduler().delivering);
    change();
}

} // namespace maxhost
