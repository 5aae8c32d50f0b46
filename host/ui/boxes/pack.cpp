// pack: one list out of what comes to the inlets; the left one sends it.
#include <vector>

#include "kernel/atomtext.h"
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct PackParts {
    std::vector<t_atom> items; // each keeps its kind
    void *outlet = nullptr;
};
using Pack = HostBox<PackParts>;

t_class *pack_class;

// A value as the kind that an item has.
t_atom of_kind(const t_atom &value, const t_atom &item) {
    switch (atom_gettype(&item)) {
    case A_LONG:
        return long_atom(atom_getlong(&value));
    case A_FLOAT:
        return float_atom(atom_getfloat(&value));
    default:
        return atom_gettype(&value) == A_SYM ? value : symbol_atom(gensym(print_atom(value).c_str()));
    }
}

// Sets items from the one of the inlet on; more values than items are left.
void set_items(Pack *x, std::span<const t_atom> values) {
    const HeldRegion hold;
    std::vector<t_atom> &items = x->parts->items;
    const auto first = static_cast<size_t>(current_inlet());
    for (size_t i = 0; i < values.size() && first + i < items.size(); ++i)
        items[first + i] = of_kind(values[i], items[first + i]);
}

void pack_send(Pack *x) {
    std::vector<t_atom> items;
    {
        const HeldRegion hold;
        items = x->parts->items;
    }
    if (items.size() == 1 && is_number(items[0])) // a list all the same
        send_through(x->parts->outlet, gensym("list"), items);
    else
        send_atoms(x->parts->outlet, items);
}

void pack_bang(Pack *x) {
    if (current_inlet() == 0)
        pack_send(x);
}

void pack_set(Pack *x, t_symbol *, long argc, t_atom *argv) { set_items(x, {argv, static_cast<size_t>(argc)}); }

void pack_anything(Pack *x, t_symbol *selector, long argc, t_atom *argv) {
    std::vector<t_atom> values;
    append_message(values, {selector, {argv, static_cast<size_t>(argc)}});
    set_items(x, values);
    pack_bang(x);
}

void pack_assist(Pack *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"First item, sends the list", "A further item"}, {"The list"});
}

// A number, a word, or one of the letters that name a kind.
t_atom first_value(const t_atom &typed) {
    if (is_number(typed))
        return typed;
    const std::string_view word = atom_getsym(&typed)->s_name;
    return word == "i" ? long_atom(0) : word == "f" ? float_atom(0) : word == "s" ? symbol_atom(gensym("")) : typed;
}

void *pack_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<PackParts>(pack_class, argc, argv);
    if (!x)
        return nullptr;
    for (const t_atom &typed : typed_arguments(argc, argv))
        x->parts->items.push_back(first_value(typed));
    if (x->parts->items.empty())
        x->parts->items.assign(2, long_atom(0));
    set_inlet_count(&x->box.b_ob, static_cast<long>(x->parts->items.size()));
    x->parts->outlet = outlet_new(x, nullptr);
    return finish_box(x, argc, argv);
}

} // namespace

void register_pack() {
    pack_class = new_box_class<PackParts>("pack", pack_new, BoxKind::typed);
    class_addmethod(pack_class, reinterpret_cast<method>(pack_bang), "bang", 0);
    add_method(pack_class, pack_set, "set");
    add_method(pack_class, pack_anything, "anything");
    add_private(pack_class, pack_assist, "assist");
    class_register(CLASS_BOX, pack_class);
}

} // namespace maxhost
