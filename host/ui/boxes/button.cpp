// The button: whatever comes in, a bang goes out.
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct ButtonParts {
    void *outlet = nullptr;
};
using Button = HostBox<ButtonParts>;

t_class *button_class;

void button_click(Button *x) {
    show_again(&x->box); // it flashes
    send_bang(x->parts->outlet);
}

void button_anything(Button *x, t_symbol *, long, t_atom *) { button_click(x); }

void button_assist(Button *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Anything, for a bang"}, {"Bang"});
}

void *button_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<ButtonParts>(button_class, argc, argv);
    if (!x)
        return nullptr;
    x->parts->outlet = outlet_new(x, "bang");
    return finish_box(x, argc, argv);
}

} // namespace

void register_button() {
    button_class = new_box_class<ButtonParts>("button", button_new, BoxKind::shown);
    add_method(button_class, button_anything, "anything");
    add_private(button_class, button_click, "click");
    add_private(button_class, button_assist, "assist");
    class_register(CLASS_BOX, button_class);
}

} // namespace maxhost
