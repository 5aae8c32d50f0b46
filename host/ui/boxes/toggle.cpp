// The toggle: on or off, 1 or 0.
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct ToggleParts {
    bool on = false;
    void *outlet = nullptr;
};
using Toggle = HostBox<ToggleParts>;

t_class *toggle_class;

void toggle_send(Toggle *x, bool on) {
    {
        const HeldRegion hold;
        x->parts->on = on;
    }
    show_again(&x->box);
    send_int(x->parts->outlet, on);
}

void toggle_bang(Toggle *x) {
    bool on;
    {
        const HeldRegion hold;
        on = !x->parts->on;
    }
    toggle_send(x, on);
}

void toggle_int(Toggle *x, t_atom_long number) { toggle_send(x, number != 0); }

void toggle_float(Toggle *x, t_symbol *, long argc, t_atom *argv) {
    toggle_send(x, argc > 0 && atom_getfloat(argv) != 0);
}

void toggle_set(Toggle *x, t_symbol *, long argc, t_atom *argv) {
    {
        const HeldRegion hold;
        x->parts->on = argc > 0 && atom_getfloat(argv) != 0;
    }
    show_again(&x->box);
}

void toggle_content(Toggle *x, std::vector<t_atom> *content) {
    const HeldRegion hold;
    content->push_back(long_atom(x->parts->on));
}

void toggle_assist(Toggle *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Bang to switch over, 0 and 1 to set"}, {"1 when on, 0 when off"});
}

void *toggle_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<ToggleParts>(toggle_class, argc, argv);
    if (!x)
        return nullptr;
    x->parts->outlet = intout(x);
    return finish_box(x, argc, argv);
}

} // namespace

void register_toggle() {
    toggle_class = new_box_class<ToggleParts>("toggle", toggle_new, BoxKind::shown);
    class_addmethod(toggle_class, reinterpret_cast<method>(toggle_bang), "bang", 0);
    class_addmethod(toggle_class, reinterpret_cast<method>(toggle_int), "int", A_LONG, 0);
    add_method(toggle_class, toggle_float, "float");
    add_method(toggle_class, toggle_float, "list");
    add_method(toggle_class, toggle_set, "set");
    add_private(toggle_class, toggle_bang, "click");
    add_private(toggle_class, toggle_assist, "assist");
    add_private(toggle_class, toggle_content, "boxcontent");
    class_register(CLASS_BOX, toggle_class);
}

} // namespace maxhost
