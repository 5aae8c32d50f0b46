// Outlets: sending along patch cords.
#include "kernel/outlets.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "jpatcher_api.h"
#include "kernel/classes.h"
#include "kernel/console.h"
#include "kernel/frontend.h"
#include "kernel/message.h"
#include "kernel/objects.h"

namespace maxhost {
namespace {

// How deep receivers may nest. Each level is a handful of frames, so that this stays far from the end of a stack.
constexpr int deepest_nesting = 500;

// How many messages one event may cause: more than any patch needs, and done with in seconds.
constexpr long most_messages = 10'000'000;

// How many bytes of long messages may come back, within one event, to an outlet that is still sending. A message that
// grows by a word each time round comes to the deepest nesting before it.
constexpr size_t most_returning_bytes = 2'000'000;
constexpr size_t short_message = 256; // bytes; messages up to that are only counted

class Sending;

// The event that is under way on this thread.
struct Event {
    const Sending *innermost = nullptr; // of the messages that are being sent
    int nesting = 0;
    long messages = 0;
    size_t returning_bytes = 0;
    bool overflowed = false; // it went too far: nothing is sent until it has unwound
};
thread_local Event event;

thread_local long ended = 0;

// About as much as the message takes as text.
size_t bytes_of(const t_symbol *selector, std::span<const t_atom> atoms) {
    constexpr size_t number = 8;
    size_t bytes = std::strlen(selector->s_name);
    for (const t_atom &atom : atoms)
        bytes += 1 + (atom_gettype(&atom) == A_SYM ? std::strlen(atom_getsym(&atom)->s_name) : number);
    return bytes;
}

// A message on its way through an outlet, while it lives: one level of nesting.
class Sending {
  public:
    Sending(const Outlet &outlet, const t_symbol *selector, std::span<const t_atom> arguments)
        : outlet_(outlet), around_(event.innermost), atoms_(arguments.size()) {
        event.innermost = this;
        ++event.nesting;
        ++event.messages;
        const size_t bytes = bytes_of(selector, arguments);
        if (bytes > short_message && returns())
            event.returning_bytes += bytes;
    }
    ~Sending() {
        event.innermost = around_;
        if (--event.nesting == 0)
            event = {};
    }
    Sending(const Sending &) = delete;
    Sending &operator=(const Sending &) = delete;

    // Why the event ends here; null when it goes on.
    const char *reason_to_end() const {
        if (atoms_ > most_atoms)
            return too_long;
        if (event.nesting > deepest_nesting || event.messages > most_messages)
            return "stack overflow: messages go round in a circle";
        if (event.returning_bytes > most_returning_bytes)
            return "stack overflow: long messages go round in a circle";
        return nullptr;
    }

  private:
    // Whether the outlet is sending already.
    bool returns() const {
        const Sending *each = around_;
        while (each && &each->outlet_ != &outlet_)
            each = each->around_;
        return each != nullptr;
    }

    const Outlet &outlet_;
    const Sending *around_;
    size_t atoms_;
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

void refuse_kind(const Outlet &outlet, long position, const t_symbol *selector) {
    guarded("outlet_anything", [&] {
        console_error(outlet.owner, "outlet " + std::to_string(position) + " sends only \"" + outlet.message->s_name +
                                        "\", not \"" + selector->s_name + "\"");
    });
}

// What messages to the first inlet of an object reach; null when that is not alive.
t_object *first_inlet_of(t_object *object) {
    const Record *record = record_of(object);
    if (!record || !record->cls->is_box)
        return object;
    t_object *first = reinterpret_cast<t_jbox *>(object)->b_firstin;
    return first == object || record_of(first) ? first : nullptr;
}

void *send(t_outlet *x, t_symbol *selector, std::span<const t_atom> arguments, const char *function) {
    if (!at_door(x, function, "null outlet"))
        return nullptr;
    const auto *outlet = static_cast<const Outlet *>(x);
    const Record *record = expect_object(outlet->owner, function);
    if (!record || event.overflowed || !at_door(selector, function, "no selector"))
        return nullptr;
    if (outlet->message && selector != outlet->message) {
        refuse_kind(*outlet, position_from_left(*record, *outlet), selector);
        return nullptr;
    }
    const Sending level(*outlet, selector, arguments);
    if (const char *reason = level.reason_to_end()) {
        guarded(function, [&] { end_event(outlet->owner, reason); });
        return nullptr;
    }
    guarded(function, [&] {
        if (front_end().output)
            front_end().output(display_name(outlet->owner), position_from_left(*record, *outlet), selector, arguments);
        const std::vector<Cord> cords = outlet->cords; // a receiver may change them
        for (size_t i = 0; i < cords.size() && !event.overflowed; ++i)
            deliver_to_inlet(cords[i].receiver, cords[i].inlet, selector, arguments);
    });
    return reinterpret_cast<void *>(static_cast<t_ptr_int>(!event.overflowed));
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

void end_event(const t_object *object, const char *reason) {
    if (event.overflowed)
        return;
    event.overflowed = event.nesting > 0;
    ++ended;
    console_error(object, reason);
}

long ended_events() { return ended; }

void deliver_to_inlet(t_object *object, long inlet, t_symbol *selector, std::span<const t_atom> arguments) {
    t_object *reached = inlet == 0 ? first_inlet_of(object) : object;
    if (reached)
        deliver(reached, selector, arguments, inlet);
    else
        console_error(object, "its first inlet leads to no object that is alive");
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
