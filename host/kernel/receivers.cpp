// Named receivers.
#include "kernel/receivers.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <unordered_map>

#include "kernel/classes.h"
#include "kernel/console.h"
#include "kernel/objects.h"

namespace maxhost {
namespace {

struct Listeners {
    std::mutex mutex;
    std::unordered_map<t_symbol *, std::vector<t_object *>> by_name;
};

Listeners &listeners() {
    static auto &the_listeners = *new Listeners;
    return the_listeners;
}

// The box that is bound to the symbol. A binding outlives what it is bound to.
t_object *bound_box(const t_symbol *name) {
    t_object *bound = std::atomic_ref(const_cast<t_symbol *>(name)->s_thing).load(); // bound on both threads
    const Record *record = bound ? record_of(bound) : nullptr;
    return record && record->cls->is_box ? bound : nullptr;
}

std::vector<t_object *> who_hears(t_symbol *name) {
    std::vector<t_object *> all;
    if (t_object *bound = bound_box(name))
        all.push_back(bound);
    std::lock_guard lock(listeners().mutex);
    if (auto found = listeners().by_name.find(name); found != listeners().by_name.end())
        all.insert(all.end(), found->second.begin(), found->second.end());
    return all;
}

} // namespace

void add_receiver(t_symbol *name, t_object *object) {
    std::lock_guard lock(listeners().mutex);
    listeners().by_name[name].push_back(object);
}

void remove_receiver(t_symbol *name, t_object *object) {
    std::lock_guard lock(listeners().mutex);
    auto found = listeners().by_name.find(name);
    if (found == listeners().by_name.end())
        return;
    std::vector<t_object *> &all = found->second;
    if (auto at = std::find(all.rbegin(), all.rend(), object); at != all.rend())
        all.erase(std::next(at).base());
    if (all.empty())
        listeners().by_name.erase(found);
}

bool deliver_to_name(t_symbol *name, const Message &message) {
    const std::vector<t_object *> all = who_hears(name);
    for (t_object *object : all)
        deliver(object, message.selector, message.arguments);
    return !all.empty();
}

void deliver_to_name_or_tell(t_symbol *name, const Message &message) {
    if (!deliver_to_name(name, message))
        console_error_about(name->s_name, "no such object");
}

} // namespace maxhost
