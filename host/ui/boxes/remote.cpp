// send and receive: messages by name, without cords.
#include "kernel/receivers.h"
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct RemoteParts {
    t_symbol *name = nullptr; // null: none yet
    void *outlet = nullptr;   // of a receive
};
using Remote = HostBox<RemoteParts>;

t_class *send_class;
t_class *receive_class;

t_symbol *first_symbol(std::span<const t_atom> atoms) {
    return atoms.empty() || atom_gettype(&atoms[0]) != A_SYM ? nullptr : atom_getsym(&atoms[0]);
}

t_symbol *name_of(const Remote *x) {
    const HeldRegion hold;
    return x->parts->name;
}

// ---- send

void send_anything(Remote *x, t_symbol *selector, long argc, t_atom *argv) {
    if (t_symbol *name = name_of(x))
        deliver_to_name(name, {selector, {argv, static_cast<size_t>(argc)}});
}

void send_assist(Remote *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Anything, for the receivers of the name"}, {});
}

void *send_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<RemoteParts>(send_class, argc, argv);
    if (!x)
        return nullptr;
    x->parts->name = first_symbol(typed_arguments(argc, argv));
    return finish_box(x, argc, argv);
}

// ---- receive

void listen_to(Remote *x, t_symbol *name) {
    if (t_symbol *before = name_of(x))
        remove_receiver(before, &x->box.b_ob);
    if (name)
        add_receiver(name, &x->box.b_ob);
    const HeldRegion hold;
    x->parts->name = name;
}

void receive_anything(Remote *x, t_symbol *selector, long argc, t_atom *argv) {
    send_through(x->parts->outlet, selector, {argv, static_cast<size_t>(argc)});
}

void receive_assist(Remote *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {}, {"What was sent to the name"});
}

void *receive_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<RemoteParts>(receive_class, argc, argv);
    if (!x)
        return nullptr;
    set_inlet_count(&x->box.b_ob, 0);
    x->parts->outlet = outlet_new(x, nullptr);
    listen_to(x, first_symbol(typed_arguments(argc, argv)));
    return finish_box(x, argc, argv);
}

void receive_free(Remote *x) {
    listen_to(x, nullptr);
    free_host_box(x);
}

} // namespace

void register_remote() {
    send_class = new_box_class<RemoteParts>("send", send_new, BoxKind::typed);
    add_method(send_class, send_anything, "anything");
    add_private(send_class, send_assist, "assist");
    class_register(CLASS_BOX, send_class);
    alias(const_cast<char *>("s"));

    receive_class = new_box_class<RemoteParts>("receive", receive_new, BoxKind::typed);
    static_cast<Class *>(receive_class)->destroy = reinterpret_cast<method>(receive_free);
    add_method(receive_class, receive_anything, "anything");
    add_private(receive_class, receive_assist, "assist");
    class_register(CLASS_BOX, receive_class);
    alias(const_cast<char *>("r"));
}

} // namespace maxhost
