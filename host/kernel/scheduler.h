// The scheduler thread: the second of the two threads on which plug-ins are called.
#pragma once

#include <functional>

namespace maxhost {

// Queues a job for the scheduler thread, which starts with the first one.
void post_to_scheduler(std::function<void()> job);

// Waits until the scheduler thread has nothing left to do. Not from the scheduler thread.
void wait_for_scheduler();

// Ends the thread when its jobs are done.
void stop_scheduler();

// Whether it is the scheduler thread that asks.
bool on_scheduler_thread();

// Runs `change` while the scheduler thread delivers nothing: objects go only then. Main thread.
void between_deliveries(const std::function<void()> &change);

} // namespace maxhost
