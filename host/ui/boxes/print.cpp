// print: what comes in goes to the console, behind its argument if it has one.
#include <string>

#include "ext_post.h"
#include "kernel/atomtext.h"
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct PrintParts {
    std::string start;
};
using Print = HostBox<PrintParts>;

t_class *print_class;

void print_anything(Print *x, t_symbol *selector, long argc, t_atom *argv) {
    std::vector<t_atom> atoms;
    append_message(atoms, {selector, {argv, static_cast<size_t>(argc)}});
    object_post(&x->box.b_ob, "%s%s", x->parts->start.c_str(), print_atoms(atoms).c_str());
}

void print_assist(Print *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Anything, for the console"}, {});
}

void *print_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<PrintParts>(print_class, argc, argv);
    if (!x)
        return nullptr;
    if (const std::span<const t_atom> typed = typed_arguments(argc, argv); !typed.empty())
        x->parts->start = print_atoms(typed) + ": ";
    return finish_box(x, argc, argv);
}

} // namespace

void register_print() {
    print_class = new_box_class<PrintParts>("print", print_new, BoxKind::typed);
    add_method(print_class, print_anything, "anything");
    add_private(print_class, print_assist, "assist");
    class_register(CLASS_BOX, print_class);
}

} // namespace maxhost
