// What the sources of the host's own boxes share: instances, their making and their freeing, and assistance.
//
// Messages come on two threads: what a box keeps is read and changed under HeldRegion, which is never held over a send.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "jpatcher_api.h"
#include "kernel/classes.h"
#include "kernel/critical.h"
#include "kernel/dictionary.h"
#include "kernel/message.h"
#include "kernel/outlets.h"
#include "ui/box.h"

namespace maxhost {

// An instance. Its parts are what the class keeps; they live as long as the box.
template <typename Parts> struct HostBox {
    t_jbox box;
    Parts *parts;
};

// A box part and new parts; null when memory runs out. finish_box is the last step: it sets the attributes that came
// with the box.
template <typename Parts> HostBox<Parts> *begin_box(t_class *cls, long argc, t_atom *argv) {
    auto *x = static_cast<HostBox<Parts> *>(object_alloc(cls));
    if (!x)
        return nullptr;
    jbox_new(&x->box, 0, argc, argv);
    x->box.b_firstin = &x->box.b_ob;
    x->parts = new Parts();
    return x;
}

template <typename Parts> void *finish_box(HostBox<Parts> *x, long argc, t_atom *argv) {
    attr_dictionary_process(x, object_dictionaryarg(argc, argv));
    jbox_ready(&x->box);
    return x;
}

template <typename Parts> void free_host_box(HostBox<Parts> *x) {
    jbox_free(&x->box);
    delete x->parts;
}

using BoxConstructor = void *(*)(t_symbol *, long, t_atom *);

// A class of HostBox<Parts>; the methods follow, then class_register. Boxes of a typed class are made from a text.
enum class BoxKind { shown, typed };
template <typename Parts> t_class *new_box_class(const char *name, BoxConstructor make, BoxKind kind) {
    t_class *cls = class_new(name, reinterpret_cast<method>(make), reinterpret_cast<method>(free_host_box<Parts>),
                             sizeof(HostBox<Parts>), nullptr, A_GIMME, 0);
    cls->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    jbox_initclass(cls, kind == BoxKind::shown ? JBOX_FONTATTR : 0);
    static_cast<Class *>(cls)->is_typed = kind == BoxKind::typed;
    return cls;
}

// A method that takes any atoms, and one that only the host calls.
template <typename Box>
void add_method(t_class *cls, void (*handler)(Box *, t_symbol *, long, t_atom *), const char *name) {
    class_addmethod(cls, reinterpret_cast<method>(handler), name, A_GIMME, 0);
}
template <typename Handler> void add_private(t_class *cls, Handler handler, const char *name) {
    class_addmethod(cls, reinterpret_cast<method>(handler), name, A_CANT, 0);
}

// The arguments of a constructor that stand behind the dictionary.
std::span<const t_atom> typed_arguments(long argc, t_atom *argv);

// Fills in an assistance text: of inlet or outlet number `index`, or the last one when there are fewer texts.
void assist_with(char *text, long kind, long index, std::initializer_list<const char *> inlets,
                 std::initializer_list<const char *> outlets);

// Sends atoms as the message that they are, or one atom by itself; false when messages go round in a circle.
bool send_atoms(void *outlet, std::span<const t_atom> atoms);
bool send_bang(void *outlet);
bool send_int(void *outlet, t_atom_long number);
bool send_float(void *outlet, double number);

// The text that a box shows and keeps under "text".
struct BoxText {
    std::string shown;
    std::vector<t_atom> kept; // what stands under "text", whatever that is; nothing when there is none
};

// Reads it from the dictionary that the box is made from; changes it; brings it for saving.
BoxText read_text(const t_dictionary *dictionary);
void change_text(BoxText &text, std::string shown);
void save_text(t_dictionary *dictionary, const BoxText &text);

// The most that typing or a message can put into a text, in bytes. A patcher file may hold more.
constexpr size_t longest_text = 1'000'000;

// Says on the console that a text was not changed, because it would have more words than a message can, or more bytes
// than that; the event is ended.
void refuse_long_text(const t_jbox &box);

inline t_atom long_atom(t_atom_long number) {
    t_atom atom;
    atom_setlong(&atom, number);
    return atom;
}

inline t_atom float_atom(double number) {
    t_atom atom;
    atom_setfloat(&atom, number);
    return atom;
}

inline t_atom symbol_atom(t_symbol *symbol) {
    t_atom atom;
    atom_setsym(&atom, symbol);
    return atom;
}

inline bool is_number(const t_atom &atom) { return atom_gettype(&atom) == A_LONG || atom_gettype(&atom) == A_FLOAT; }

} // namespace maxhost
