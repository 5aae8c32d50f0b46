// trigger: one message becomes several, from right to left.
#include <vector>

#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

// What an outlet sends: i, f, b, l or s, or a constant.
struct TriggerOutlet {
    char kind = 'c';
    t_atom constant{};
    void *outlet = nullptr;
};

struct TriggerParts {
    std::vector<TriggerOutlet> outlets; // from left to right
};
using Trigger = HostBox<TriggerParts>;

t_class *trigger_class;

// The first atom of a message, or the number 0.
t_atom first_of(std::span<const t_atom> atoms) { return atoms.empty() ? long_atom(0) : atoms[0]; }

bool send_one(const TriggerOutlet &each, const Message &message, std::span<const t_atom> atoms) {
    const t_atom first = first_of(atoms);
    const t_atom symbol = symbol_atom(atom_getsym(&first)); // a number has none
    switch (each.kind) {
    case 'i':
        return send_int(each.outlet, is_number(first) ? atom_getlong(&first) : 0);
    case 'f':
        return send_float(each.outlet, is_number(first) ? atom_getfloat(&first) : 0);
    case 'b':
        return send_bang(each.outlet);
    case 'l':
        return send_through(each.outlet, message.selector, message.arguments) != nullptr;
    case 's':
        return send_atoms(each.outlet, {&symbol, 1});
    default:
        return send_atoms(each.outlet, {&each.constant, 1});
    }
}

void trigger_anything(Trigger *x, t_symbol *selector, long argc, t_atom *argv) {
    const Message message{selector, {argv, static_cast<size_t>(argc)}};
    std::vector<t_atom> atoms;
    if (selector != gensym("bang"))
        append_message(atoms, message);
    const std::vector<TriggerOutlet> &outlets = x->parts->outlets;
    for (size_t i = outlets.size(); i-- > 0;)
        if (!send_one(outlets[i], message, atoms))
            return;
}

void trigger_assist(Trigger *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Message to send from right to left"}, {"The message, as the letter has it"});
}

TriggerOutlet read_outlet(const t_atom &typed) {
    const std::string_view word = atom_getsym(&typed)->s_name;
    const bool is_letter = word.size() == 1 && std::string_view("ifblsa").find(word[0]) != word.npos;
    const char kind = !is_letter ? 'c' : word[0] == 'a' ? 'l' : word[0];
    return {kind, typed, nullptr};
}

const char *message_of_kind(char kind) {
    return kind == 'i' ? "int" : kind == 'f' ? "float" : kind == 'b' ? "bang" : nullptr;
}

void *trigger_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<TriggerParts>(trigger_class, argc, argv);
    if (!x)
        return nullptr;
    std::vector<TriggerOutlet> &outlets = x->parts->outlets;
    for (const t_atom &typed : typed_arguments(argc, argv))
        outlets.push_back(read_outlet(typed));
    if (outlets.empty())
        outlets.assign(2, TriggerOutlet{'i', {}, nullptr});
    for (size_t i = outlets.size(); i-- > 0;) // outlets come from right to left
        outlets[i].outlet = outlet_new(x, message_of_kind(outlets[i].kind));
    return finish_box(x, argc, argv);
}

} // namespace

void register_trigger() {
    trigger_class = new_box_class<TriggerParts>("trigger", trigger_new, BoxKind::typed);
    add_method(trigger_class, trigger_anything, "anything");
    add_private(trigger_class, trigger_assist, "assist");
    class_register(CLASS_BOX, trigger_class);
    alias(const_cast<char *>("t"));
}

} // namespace maxhost
