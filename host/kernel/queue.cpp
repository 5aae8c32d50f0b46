// The low-priority queue.
#include "kernel/queue.h"

#include <chrono>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kernel/console.h"
#include "kernel/critical.h"
#include "kernel/door.h"
#include "kernel/frontend.h"
#include "kernel/trace.h"

namespace maxhost {
namespace {

struct QueueElement;

// Either a deferred call or a queue element.
struct Entry {
    void *object = nullptr;
    method function = nullptr;
    t_symbol *symbol = nullptr;
    std::vector<t_atom> atoms;
    QueueElement *element = nullptr;
};

using Entries = std::list<Entry>;

// Its entry is made with it and only changes lists, so that setting it cannot fail.
struct QueueElement {
    Entries idle; // the entry, while it is not queued
    Entries::iterator place;

    bool is_queued() const { return idle.empty(); }
};

struct Queue {
    std::mutex mutex;
    Entries entries;
    std::unordered_map<const void *, std::deque<Entries::iterator>> deferred; // the calls for an object, in order
    std::unordered_set<void *> elements;                                      // all that are alive

    // The main thread's: since drain_queue_for left nothing.
    size_t tasks_in_a_row = 0;
    bool end_is_missed = false; // and that has been told
};

Queue &queue() {
    static auto &the_queue = *new Queue;
    return the_queue;
}

// Takes the first deferred call for an object off the list of them. The queue's mutex is held.
void forget_first(const void *object) {
    auto found = queue().deferred.find(object);
    found->second.pop_front();
    if (found->second.empty())
        queue().deferred.erase(found);
}

// Takes the first entry out; false when there is none.
bool take(Entry &entry) {
    std::lock_guard lock(queue().mutex);
    if (queue().entries.empty())
        return false;
    Entries &entries = queue().entries;
    entry = std::move(entries.front());
    if (entry.element) { // back to it, so that its own task can set it again
        entry.element->idle.splice(entry.element->idle.end(), entries, entries.begin());
    } else {
        entries.pop_front();
        forget_first(entry.object);
    }
    return true;
}

void run(Entry &entry) {
    using Deferred = void *(*)(void *, t_symbol *, short, t_atom *);
    if (entry.element)
        entry.function(entry.object);
    else
        reinterpret_cast<Deferred>(entry.function)(entry.object, entry.symbol, static_cast<short>(entry.atoms.size()),
                                                   entry.atoms.empty() ? nullptr : entry.atoms.data());
    expect_no_region("a queued task");
}

// True for a living queue element. The queue's mutex is held.
bool is_element(void *x) { return queue().elements.contains(x); }

// Runs what is queued now; how much that was.
size_t run_round() {
    size_t count;
    {
        std::lock_guard lock(queue().mutex);
        count = queue().entries.size();
    }
    Entry entry;
    for (size_t i = 0; i < count && take(entry); ++i)
        run(entry);
    return count;
}

// A round runs what the round before it has queued. Nothing that comes to an end takes this many.
constexpr long most_rounds = 10'000;
constexpr size_t most_tasks = 10'000'000;

void complain_of_no_end() {
    console_error(nullptr, "the queue does not become empty: something queues itself for ever");
}

// The queue's mutex is not held.
void tell_of_work() {
    if (front_end().work)
        front_end().work();
}

// True for a living queue element, which then is queued.
bool set_element(void *x) {
    std::lock_guard lock(queue().mutex);
    if (!is_element(x))
        return false;
    auto *element = static_cast<QueueElement *>(x);
    queue().entries.splice(queue().entries.end(), element->idle); // nothing when it is queued
    return true;
}

} // namespace

void drain_queue() {
    size_t tasks = 0;
    for (long round = 0; round < most_rounds && tasks < most_tasks; ++round) {
        const size_t count = run_round();
        if (count == 0)
            return;
        tasks += count;
    }
    complain_of_no_end();
}

bool drain_queue_for(double milliseconds) {
    using clock = std::chrono::steady_clock;
    const auto end = clock::now() + std::chrono::duration<double, std::milli>(milliseconds);
    Entry entry;
    while (take(entry)) {
        run(entry);
        ++queue().tasks_in_a_row;
        if (clock::now() >= end)
            break;
    }
    std::lock_guard lock(queue().mutex);
    if (!queue().entries.empty())
        return false;
    queue().tasks_in_a_row = 0;
    queue().end_is_missed = false;
    return true;
}

void tell_of_endless_queue() {
    if (queue().tasks_in_a_row < most_tasks || queue().end_is_missed)
        return;
    queue().end_is_missed = true;
    complain_of_no_end();
}

bool run_queue_once() { return run_round() > 0; }

void defer(void *object, method function, t_symbol *symbol, std::span<const t_atom> atoms) {
    Entries made(1, Entry{object, function, symbol, {atoms.begin(), atoms.end()}, nullptr});
    {
        std::lock_guard lock(queue().mutex);
        queue().deferred[object].push_back(made.begin());
        queue().entries.splice(queue().entries.end(), made);
    }
    tell_of_work();
}

void forget_deferred(const void *object) {
    std::lock_guard lock(queue().mutex);
    auto found = queue().deferred.find(object);
    if (found == queue().deferred.end())
        return;
    for (Entries::iterator place : found->second)
        queue().entries.erase(place);
    queue().deferred.erase(found);
}

} // namespace maxhost

using namespace maxhost;

void *defer_low(void *ob, method fn, t_symbol *sym, short argc, t_atom *argv) {
    trace(trace_queue, "defer_low", sym, static_cast<int>(argc));
    if (!at_door(ob && fn && argc >= 0 && (argv || argc == 0), "defer_low", "no object, no function or no atoms"))
        return nullptr;
    guarded("defer_low", [&] { defer(ob, fn, sym, {argv, static_cast<size_t>(argc)}); });
    return nullptr;
}

void *qelem_new(void *obj, method fn) {
    return guarded("qelem_new", static_cast<void *>(nullptr), [&]() -> void * {
        auto element = std::make_unique<QueueElement>();
        element->idle.push_back({obj, fn, nullptr, {}, element.get()});
        element->place = element->idle.begin();
        std::lock_guard lock(queue().mutex);
        queue().elements.insert(element.get());
        return element.release();
    });
}

void qelem_set(t_qelem *x) {
    trace(trace_queue, "qelem_set");
    if (!set_element(x))
        return misuse("qelem_set", "not a living queue element");
    tell_of_work();
}

void qelem_free(t_qelem *x) {
    {
        std::lock_guard lock(queue().mutex);
        if (is_element(x)) {
            auto *element = static_cast<QueueElement *>(x);
            if (element->is_queued())
                queue().entries.erase(element->place);
            queue().elements.erase(x);
            delete element;
            return;
        }
    }
    misuse("qelem_free", "not a living queue element");
}
