// Number boxes, for integers and for floats.
#include <cmath>
#include <limits>

#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

constexpr double no_limit = std::numeric_limits<double>::infinity();

struct NumberParts {
    bool is_float = false;
    t_atom value{};
    double least = -no_limit;
    double most = no_limit;
    void *entered = nullptr; // right outlet: a bang when a person has typed
    void *outlet = nullptr;
};
using Number = HostBox<NumberParts>;

t_class *number_class;
t_class *flonum_class;

// The number in the box's kind and between its limits.
t_atom fitted(const NumberParts &parts, const t_atom &atom) {
    const double value = atom_getfloat(&atom);
    const bool outside = value < parts.least || value > parts.most;
    const t_atom inside = outside ? float_atom(value < parts.least ? parts.least : parts.most) : atom;
    return parts.is_float ? float_atom(atom_getfloat(&inside)) : long_atom(atom_getlong(&inside));
}

void number_send(Number *x) {
    t_atom value;
    {
        const HeldRegion hold;
        value = x->parts->value;
    }
    send_atoms(x->parts->outlet, {&value, 1});
}

void number_set(Number *x, t_symbol *, long argc, t_atom *argv) {
    {
        const HeldRegion hold;
        if (argc > 0)
            x->parts->value = fitted(*x->parts, argv[0]);
    }
    show_again(&x->box);
}

void number_content(Number *x, std::vector<t_atom> *content) {
    const HeldRegion hold;
    content->push_back(x->parts->value);
}

// "int", "float" and "list", of which the first number counts.
void number_number(Number *x, t_symbol *selector, long argc, t_atom *argv) {
    number_set(x, selector, argc, argv);
    number_send(x);
}

// A person has typed a number, or, without one, has come to the end of dragging.
void number_entered(Number *x, long argc, t_atom *argv) {
    send_bang(x->parts->entered);
    if (argc > 0)
        number_number(x, nullptr, argc, argv);
}

void number_assist(Number *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Number to show and send, bang to send"},
                {"The number", "Bang when one was typed"});
}

// A limit that the file has; "<none>" and others that are no numbers are none.
void read_limit(const t_dictionary *dictionary, const char *key, double &limit) {
    const std::span<const t_atom> atoms = atoms_under(dictionary, key);
    if (!atoms.empty() && is_number(atoms[0]) && !std::isnan(atom_getfloat(&atoms[0])))
        limit = atom_getfloat(&atoms[0]);
}

void *make_number(t_class *cls, bool is_float, long argc, t_atom *argv) {
    auto *x = begin_box<NumberParts>(cls, argc, argv);
    if (!x)
        return nullptr;
    const t_dictionary *dictionary = object_dictionaryarg(argc, argv);
    read_limit(dictionary, "minimum", x->parts->least);
    read_limit(dictionary, "maximum", x->parts->most);
    x->parts->is_float = is_float;
    x->parts->value = fitted(*x->parts, long_atom(0));
    x->parts->entered = outlet_new(x, "bang");
    x->parts->outlet = outlet_new(x, nullptr);
    return finish_box(x, argc, argv);
}

void *number_new(t_symbol *, long argc, t_atom *argv) { return make_number(number_class, false, argc, argv); }
void *flonum_new(t_symbol *, long argc, t_atom *argv) { return make_number(flonum_class, true, argc, argv); }

t_class *register_class(const char *name, BoxConstructor make) {
    t_class *cls = new_box_class<NumberParts>(name, make, BoxKind::shown);
    class_addmethod(cls, reinterpret_cast<method>(number_send), "bang", 0);
    for (const char *kind : {"int", "float", "list"})
        add_method(cls, number_number, kind);
    add_method(cls, number_set, "set");
    add_private(cls, number_assist, "assist");
    add_private(cls, number_content, "boxcontent");
    add_private(cls, number_entered, "entered");
    class_register(CLASS_BOX, cls);
    return cls;
}

} // namespace

void register_numbers() {
    number_class = register_class("number", number_new);
    flonum_class = register_class("flonum", flonum_new);
}

} // namespace maxhost
