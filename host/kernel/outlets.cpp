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

thread_local int nesting = 0;
thread_local bool overflowed = false; // until the event that nested too deeply has unwound

// Counts one level of nesting while it lives.
class Nesting {
  public:
    Nesting() { ++nesting; }
    ~Nesting() {
        if (--nesting == 0)
            overflowed = false;
    }
};

void *new_outlet(void *x, t_symbol *message, const char *function) {
    Record *record = expect_object(x, function);
    if (!record)
        return nullptr;
    record->outlets.push_back(std::make_unique<Outlet>(Outlet{static_cast<t_object *>(x), message, {}}));
    return record->outlets.back().get();
}

long position_from_left(const Record &record, const Outlet *outlet) {
    auto at = std::find_if(record.outlets.begin(), record.outlets.end(), [&](auto &o) { return o.get() == outlet; });
    return std::distance(at, record.outlets.end()) - 1;
}

void *send(t_outlet *x, t_symbol *selector, std::span<const t_atom> arguments, const char *function) {
    if (!at_door(x, function, "null outlet"))
        return nullptr;
    const auto *outlet = static_cast<const Outlet *>(x);
    const Record *record = expect_object(outlet->owner, function);
    if (!record || overflowed)
        return nullptr;
    const Nesting level;
    if (nesting > deepest_nesting) {
        overflowed = true;
        console_error(outlet->owner, "stack overflow: messages go round in a circle");
        return nullptr;
    }
    if (front_end().output)
        front_end().output(display_name(outlet->owner), position_from_left(*record, outlet), selector, arguments);
    const std::vector<t_object *> receivers = outlet->receivers; // a receiver may change the cords
    for (t_object *receiver : receivers)
        deliver(receiver, selector, arguments);
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

void connect(Outlet &outlet, t_object *receiver) { outlet.receivers.push_back(receiver); }

void disconnect(t_object *owner, t_object *receiver) {
    if (const Record *record = record_of(owner))
        for (auto &outlet : record->outlets)
            std::erase(outlet->receivers, receiver);
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
