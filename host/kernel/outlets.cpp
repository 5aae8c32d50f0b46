// Outlets: sending along patch cords.
#include "kernel/outlets.h"

#include <algorithm>
#include <span>

#include "kernel/classes.h"
#include "kernel/console.h"
#include "kernel/frontend.h"
#include "kernel/objects.h"

namespace maxhost {
namespace {

// How deep receivers may nest. Each level is a handful of frames, so that this stays far from the end of a stack.
constexpr int deepest_nesting = 500;

// How many messages one event may cause: more than any patch needs, and done with in seconds.
constexpr long most_messages = 10'000'000;

thread_local int nesting = 0;
thread_local long messages = 0;       // of the event that is under way
thread_local bool overflowed = false; // until the event that went too far has unwound

// Counts one level of nesting while it lives.
class Nesting {
  public:
    Nesting() {
        ++nesting;
        ++messages;
    }
    ~Nesting() {
        if (--nesting > 0)
            return;
        overflowed = false;
        messages = 0;
    }
    bool goes_too_far() const { return nesting > deepest_nesting || messages > most_messages; }
};

void *new_outlet(void *x, t_symbol *message, const char *function) {
    Record *record = expect_object(x, function);
    if (!record)
        return nullptr;
    return guarded(function, static_cast<void *>(nullptr), [&]() -> void * {
        const auto before = static_cast<long>(record->outlets.size());
        record->outlets.push_back(std::make_unique<Outlet>(Outlet{static_cast<t_object *>(x), message, before, {}}));
        return record->outlets.back().get();
    });
}

long position_from_left(const Record &record, const Outlet &outlet) {
    return static_cast<long>(record.outlets.size()) - 1 - outlet.created;
}

// Takes one mention of the outlet off the list of those that lead to an object.
void forget_source(t_object *receiver, const Outlet *outlet) {
    Record *record = record_of(receiver);
    if (!record)
        return;
    auto found = std::find(record->sources.rbegin(), record->sources.rend(), outlet);
    if (found != record->sources.rend())
        record->sources.erase(std::next(found).base());
}

void *send(t_outlet *x, t_symbol *selector, std::span<const t_atom> arguments, const char *function) {
    if (!at_door(x, function, "null outlet"))
        return nullptr;
    const auto *outlet = static_cast<const Outlet *>(x);
    const Record *record = expect_object(outlet->owner, function);
    if (!record || overflowed)
        return nullptr;
    const Nesting level;
    if (level.goes_too_far()) {
        overflowed = true;
        console_error(outlet->owner, "stack overflow: messages go round in a circle");
        return nullptr;
    }
    guarded(function, [&] {
        if (front_end().output)
            front_end().output(display_name(outlet->owner), position_from_left(*record, *outlet), selector, arguments);
        const std::vector<Cord> cords = outlet->cords; // a receiver may change them
        for (const Cord &cord : cords)
            deliver(cord.receiver, selector, arguments, cord.inlet);
    });
    return reinterpret_cast<void *>(static_cast<t_ptr_int>(!overflowed));
}

} // namespace

Outlet *outlet_of(t_object *owner, long from_left) {
    const Record *record = record_of(owner);
    const long count = record ? static_cast<long>(record->outlets.size()) : 0;
    return from_left >= 0 && from_left < count ? record->outlets[static_cast<size_t>(count - 1 - from_left)].get()
                                               : nullptr;
}

long outlet_count(t_object *owner) {
    const Record *record = record_of(owner);
    return record ? static_cast<long>(record->outlets.size()) : 0;
}

long inlet_count(const t_object *object) {
    const Record *record = record_of(object);
    return record ? record->inlets : 0;
}

void set_inlet_count(t_object *object, long count) {
    if (Record *record = record_of(object))
        record->inlets = count;
}

void *send_through(t_outlet *outlet, t_symbol *selector, std::span<const t_atom> arguments) {
    return send(outlet, selector, arguments, "outlet_anything");
}

void connect(Outlet &outlet, const Cord &cord) {
    outlet.cords.push_back(cord);
    if (Record *record = record_of(cord.receiver))
        record->sources.push_back(&outlet);
}

void cut_cords(t_object *object) {
    Record *record = record_of(object);
    if (!record)
        return;
    for (auto &outlet : record->outlets) {
        for (const Cord &cord : outlet->cords)
            forget_source(cord.receiver, outlet.get());
        outlet->cords.clear();
    }
    for (Outlet *source : record->sources)
        std::erase_if(source->cords, [&](const Cord &cord) { return cord.receiver == object; });
    record->sources.clear();
}

void forget_cords(t_object *object) {
    Record *record = record_of(object);
    if (!record)
        return;
    for (auto &outlet : record->outlets)
        outlet->cords.clear();
    record->sources.clear();
}

} // namespace maxhost

using namespace maxhost;

void *outlet_new(void *x, const char *s) { return new_outlet(x, s ? gensym(s) : nullptr, "outlet_new"); }

void *intout(void *x) { return new_outlet(x, gensym("int"), "intout"); }

void *outlet_int(t_outlet *x, t_atom_long n) {
    t_atom number;
    number.a_type = A_LONG;
    number.a_w.w_long = n;
    return send(x, gensym("int"), {&number, 1}, "outlet_int");
}

void *outlet_anything(t_outlet *x, t_symbol *s, short ac, t_atom *av) {
    if (!at_door(s && ac >= 0 && (av || ac == 0), "outlet_anything", "no selector or no atoms"))
        return nullptr;
    return send(x, s, {av, static_cast<size_t>(ac)}, "outlet_anything");
}
