// route and select: messages told apart by how they begin.
#include <vector>

#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct RoutingParts {
    std::vector<t_atom> keys;    // each has an inlet, from the second on, that changes it
    std::vector<void *> outlets; // one for each key, and the last for what fits none
};
using Routing = HostBox<RoutingParts>;

t_class *route_class;
t_class *select_class;

bool same(const t_atom &a, const t_atom &b) {
    if (is_number(a) && is_number(b))
        return atom_getfloat(&a) == atom_getfloat(&b);
    return atom_gettype(&a) == A_SYM && atom_gettype(&b) == A_SYM && atom_getsym(&a) == atom_getsym(&b);
}

// The place of the first key that is the atom; the number of keys when none is.
size_t place_of(const std::vector<t_atom> &keys, const t_atom &atom) {
    size_t place = 0;
    while (place < keys.size() && !same(keys[place], atom))
        ++place;
    return place;
}

// What a message begins with: its first number, or else its selector.
t_atom beginning(const Message &message) {
    const bool begins_with_argument =
        !message.arguments.empty() && (message.selector == gensym("int") || message.selector == gensym("float") ||
                                       message.selector == gensym("list"));
    return begins_with_argument ? message.arguments[0] : symbol_atom(message.selector);
}

// Changes the key that belongs to the inlet which the message came to; false at the left inlet.
bool change_key(Routing *x, const Message &message) {
    const long inlet = current_inlet();
    if (inlet == 0)
        return false;
    const HeldRegion hold;
    x->parts->keys[static_cast<size_t>(inlet) - 1] =
        message.selector == gensym("symbol") && !message.arguments.empty() ? message.arguments[0] : beginning(message);
    return true;
}

std::vector<t_atom> keys_of(const Routing *x) {
    const HeldRegion hold;
    return x->parts->keys;
}

void pass_on(Routing *x, const Message &message) {
    send_through(x->parts->outlets.back(), message.selector, message.arguments);
}

// A key takes what begins with it, and sends the rest; a key that is the kind of a message sends it whole.
void route_anything(Routing *x, t_symbol *selector, long argc, t_atom *argv) {
    const Message message{selector, {argv, static_cast<size_t>(argc)}};
    if (change_key(x, message))
        return;
    const std::vector<t_atom> keys = keys_of(x);
    const t_atom first = beginning(message);
    if (const size_t place = place_of(keys, first); place < keys.size()) {
        const bool is_argument = atom_gettype(&first) != A_SYM || selector == gensym("list");
        send_atoms(x->parts->outlets[place], message.arguments.subspan(is_argument ? 1 : 0));
    } else if (const size_t kind = place_of(keys, symbol_atom(selector)); kind < keys.size()) {
        send_atoms(x->parts->outlets[kind], message.arguments);
    } else {
        pass_on(x, message);
    }
}

// A key that is the number or the word sends a bang.
void select_anything(Routing *x, t_symbol *selector, long argc, t_atom *argv) {
    const Message message{selector, {argv, static_cast<size_t>(argc)}};
    if (change_key(x, message))
        return;
    const std::vector<t_atom> keys = keys_of(x);
    const bool is_symbol = selector == gensym("symbol") && argc > 0;
    const size_t place = place_of(keys, is_symbol ? argv[0] : beginning(message));
    if (place < keys.size())
        send_bang(x->parts->outlets[place]);
    else
        pass_on(x, message);
}

void route_assist(Routing *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Message to tell apart", "What it may begin with"},
                {"The rest of a message that begins so; at the right, any other"});
}

void select_assist(Routing *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Number or word to tell apart", "Number or word that it may be"},
                {"Bang for its number or word; at the right, any other"});
}

void *make_routing(t_class *cls, const char *outlet_message, long argc, t_atom *argv) {
    auto *x = begin_box<RoutingParts>(cls, argc, argv);
    if (!x)
        return nullptr;
    const std::span<const t_atom> typed = typed_arguments(argc, argv);
    std::vector<t_atom> &keys = x->parts->keys;
    keys.assign(typed.begin(), typed.end());
    if (keys.empty())
        keys.push_back(long_atom(0));
    set_inlet_count(&x->box.b_ob, static_cast<long>(keys.size()) + 1);
    std::vector<void *> &outlets = x->parts->outlets;
    outlets.resize(keys.size() + 1);
    for (size_t i = outlets.size(); i-- > 0;) // outlets come from right to left
        outlets[i] = outlet_new(x, i + 1 == outlets.size() ? nullptr : outlet_message);
    return finish_box(x, argc, argv);
}

void *route_new(t_symbol *, long argc, t_atom *argv) { return make_routing(route_class, nullptr, argc, argv); }
void *select_new(t_symbol *, long argc, t_atom *argv) { return make_routing(select_class, "bang", argc, argv); }

} // namespace

void register_routing() {
    route_class = new_box_class<RoutingParts>("route", route_new, BoxKind::typed);
    add_method(route_class, route_anything, "anything");
    add_private(route_class, route_assist, "assist");
    class_register(CLASS_BOX, route_class);

    select_class = new_box_class<RoutingParts>("select", select_new, BoxKind::typed);
    add_method(select_class, select_anything, "anything");
    add_private(select_class, select_assist, "assist");
    class_register(CLASS_BOX, select_class);
    alias(const_cast<char *>("sel"));
}

} // namespace maxhost
