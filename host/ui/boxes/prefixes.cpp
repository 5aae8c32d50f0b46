// prepend and append: words put before or behind what comes in.
#include <vector>

#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct PrefixParts {
    std::vector<t_atom> words;
    bool in_front = true;
    void *outlet = nullptr;
};
using Prefix = HostBox<PrefixParts>;

t_class *prepend_class;
t_class *append_class;

void prefix_anything(Prefix *x, t_symbol *selector, long argc, t_atom *argv) {
    std::vector<t_atom> atoms, words;
    append_message(atoms, {selector, {argv, static_cast<size_t>(argc)}});
    {
        const HeldRegion hold;
        words = x->parts->words;
    }
    atoms.insert(x->parts->in_front ? atoms.begin() : atoms.end(), words.begin(), words.end());
    send_atoms(x->parts->outlet, atoms);
}

void prefix_set(Prefix *x, t_symbol *, long argc, t_atom *argv) {
    const HeldRegion hold;
    x->parts->words.assign(argv, argv + argc);
}

void prefix_assist(Prefix *x, void *, long kind, long index, char *text) {
    if (x->parts->in_front)
        assist_with(text, kind, index, {"Message to put the words before"}, {"The words and the message"});
    else
        assist_with(text, kind, index, {"Message to put the words behind"}, {"The message and the words"});
}

void *make_prefix(t_class *cls, bool in_front, long argc, t_atom *argv) {
    auto *x = begin_box<PrefixParts>(cls, argc, argv);
    if (!x)
        return nullptr;
    const std::span<const t_atom> typed = typed_arguments(argc, argv);
    x->parts->words.assign(typed.begin(), typed.end());
    x->parts->in_front = in_front;
    x->parts->outlet = outlet_new(x, nullptr);
    return finish_box(x, argc, argv);
}

void *prepend_new(t_symbol *, long argc, t_atom *argv) { return make_prefix(prepend_class, true, argc, argv); }
void *append_new(t_symbol *, long argc, t_atom *argv) { return make_prefix(append_class, false, argc, argv); }

t_class *register_class(const char *name, BoxConstructor make) {
    t_class *cls = new_box_class<PrefixParts>(name, make, BoxKind::typed);
    add_method(cls, prefix_anything, "anything");
    add_method(cls, prefix_set, "set");
    add_private(cls, prefix_assist, "assist");
    class_register(CLASS_BOX, cls);
    return cls;
}

} // namespace

void register_prefixes() {
    prepend_class = register_class("prepend", prepend_new);
    append_class = register_class("append", append_new);
}

} // namespace maxhost
