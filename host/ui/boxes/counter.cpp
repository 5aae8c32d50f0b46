// counter: counts bangs between two numbers, up, down, or to and fro.
#include <algorithm>
#include <limits>

#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

enum Direction : t_atom_long { up = 0, down = 1, up_and_down = 2 };

struct CounterParts {
    t_atom_long direction = up;
    t_atom_long least = 0;
    t_atom_long most = std::numeric_limits<int32_t>::max();
    t_atom_long next = 0;          // what the next bang sends
    bool falling = false;          // while it counts to and fro
    t_atom_long rounds = 0;        // how often the end was reached
    bool at_least = false;         // the left flag is up
    bool at_most = false;          // the right flag is up
    void *rounds_outlet = nullptr; // from right to left
    void *most_outlet = nullptr;
    void *least_outlet = nullptr;
    void *outlet = nullptr;
};
using Counter = HostBox<CounterParts>;

t_class *counter_class;

bool is_falling(const CounterParts &parts) {
    return parts.direction == down || (parts.direction == up_and_down && parts.falling);
}

// What stands behind `number`; the ends lead to each other, or turn round.
t_atom_long following(CounterParts &parts, t_atom_long number) {
    if (parts.direction == up_and_down && number >= parts.most)
        parts.falling = true;
    if (parts.direction == up_and_down && number <= parts.least)
        parts.falling = false;
    if (parts.least == parts.most)
        return parts.least;
    if (is_falling(parts))
        return number <= parts.least ? parts.most : number - 1;
    return number >= parts.most ? parts.least : number + 1;
}

// Sends a number: before it the flags that change, and how often the end was reached.
void counter_send(Counter *x, t_atom_long number) {
    CounterParts before, now;
    {
        const HeldRegion hold;
        CounterParts &parts = *x->parts;
        number = std::clamp(number, parts.least, parts.most);
        before = parts;
        const bool falling = is_falling(parts);
        parts.at_most = !falling && number == parts.most;
        parts.at_least = falling && number == parts.least;
        parts.rounds += parts.at_most || parts.at_least;
        parts.next = following(parts, number);
        now = parts;
    }
    if (now.rounds != before.rounds)
        send_int(now.rounds_outlet, now.rounds);
    if (now.at_most != before.at_most)
        send_int(now.most_outlet, now.at_most);
    if (now.at_least != before.at_least)
        send_int(now.least_outlet, now.at_least);
    send_int(now.outlet, number);
}

t_atom_long next_of(const Counter *x) {
    const HeldRegion hold;
    return x->parts->next;
}

void set_direction(CounterParts &parts, t_atom_long direction) {
    parts.direction = std::clamp(direction, t_atom_long{up}, t_atom_long{up_and_down});
    parts.falling = false;
}

void set_next(CounterParts &parts, t_atom_long number) { parts.next = std::clamp(number, parts.least, parts.most); }

void set_limits(CounterParts &parts, t_atom_long least, t_atom_long most) {
    parts.least = std::min(least, most);
    parts.most = std::max(least, most);
    set_next(parts, parts.next);
}

// ---- messages

void counter_bang(Counter *x) {
    if (current_inlet() == 0)
        counter_send(x, next_of(x));
}

void counter_set(Counter *x, t_atom_long number) {
    const HeldRegion hold;
    set_next(*x->parts, number);
}

void counter_jam(Counter *x, t_atom_long number) { counter_send(x, number); }

void counter_min(Counter *x, t_atom_long number) {
    const HeldRegion hold;
    set_limits(*x->parts, number, std::max(number, x->parts->most));
}

void counter_max(Counter *x, t_atom_long number) {
    const HeldRegion hold;
    set_limits(*x->parts, std::min(number, x->parts->least), number);
}

// From left to right: count, direction, number for the next bang, number for now, upper end.
void counter_int(Counter *x, t_atom_long number) {
    switch (current_inlet()) {
    case 0:
        return counter_bang(x);
    case 1: {
        const HeldRegion hold;
        return set_direction(*x->parts, number);
    }
    case 2:
        return counter_set(x, number);
    case 3:
        return counter_jam(x, number);
    default:
        return counter_max(x, number);
    }
}

void counter_direction(Counter *x, t_symbol *selector, long, t_atom *) {
    const HeldRegion hold;
    set_direction(*x->parts, selector == gensym("up") ? up : selector == gensym("down") ? down : up_and_down);
}

void counter_assist(Counter *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index,
                {"Bang to count", "Direction: 0 up, 1 down, 2 to and fro", "Number for the next bang",
                 "Number to send now", "Upper end"},
                {"The number", "1 at the lower end, 0 behind it", "1 at the upper end, 0 behind it",
                 "How often an end was reached"});
}

// [direction] [lower end] upper end
void read_arguments(CounterParts &parts, std::span<const t_atom> typed) {
    const auto number = [&](size_t at) { return atom_getlong(&typed[at]); };
    if (typed.size() == 1)
        set_limits(parts, 0, number(0));
    else if (typed.size() == 2)
        set_limits(parts, number(0), number(1));
    else if (typed.size() > 2)
        set_limits(parts, number(1), number(2));
    if (typed.size() > 2)
        set_direction(parts, number(0));
    parts.next = parts.direction == down ? parts.most : parts.least;
}

void *counter_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<CounterParts>(counter_class, argc, argv);
    if (!x)
        return nullptr;
    read_arguments(*x->parts, typed_arguments(argc, argv));
    set_inlet_count(&x->box.b_ob, 5);
    x->parts->rounds_outlet = intout(x);
    x->parts->most_outlet = intout(x);
    x->parts->least_outlet = intout(x);
    x->parts->outlet = intout(x);
    return finish_box(x, argc, argv);
}

} // namespace

void register_counter() {
    counter_class = new_box_class<CounterParts>("counter", counter_new, BoxKind::typed);
    class_addmethod(counter_class, reinterpret_cast<method>(counter_bang), "bang", 0);
    const auto add_number = [](auto handler, const char *name) {
        class_addmethod(counter_class, reinterpret_cast<method>(handler), name, A_LONG, 0);
    };
    add_number(counter_int, "int");
    add_number(counter_set, "set");
    add_number(counter_set, "goto");
    add_number(counter_jam, "jam");
    add_number(counter_min, "min");
    add_number(counter_max, "max");
    for (const char *direction : {"up", "down", "updown"})
        add_method(counter_class, counter_direction, direction);
    add_private(counter_class, counter_assist, "assist");
    class_register(CLASS_BOX, counter_class);
}

} // namespace maxhost
