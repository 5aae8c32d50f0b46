// The inert box.
#include "ui/inertbox.h"

#include <algorithm>

#include "jpatcher_api.h"
#include "kernel/dictionary.h"
#include "kernel/outlets.h"

namespace maxhost {
namespace {

constexpr t_atom_long most_outlets = 1024; // and inlets

t_class *inert;

long count_under(const t_dictionary *dictionary, const char *key, t_atom_long otherwise) {
    std::span<const t_atom> atoms = atoms_under(dictionary, key);
    return std::clamp(atoms.empty() ? otherwise : atom_getlong(atoms.data()), t_atom_long{0}, most_outlets);
}

void *inert_new(t_symbol *, long argc, t_atom *argv) {
    auto *box = static_cast<t_jbox *>(object_alloc(inert));
    if (!box)
        return nullptr;
    jbox_new(box, 0, argc, argv);
    box->b_firstin = &box->b_ob;
    const t_dictionary *dictionary = object_dictionaryarg(argc, argv);
    set_inlet_count(&box->b_ob, count_under(dictionary, "numinlets", 1));
    for (long i = count_under(dictionary, "numoutlets", 0); i > 0; --i)
        outlet_new(box, nullptr);
    jbox_ready(box);
    return box;
}

void inert_anything(t_jbox *, t_symbol *, long, t_atom *) {}

} // namespace

const Class &inert_class() {
    if (!inert) {
        inert = class_new("inert", reinterpret_cast<method>(inert_new), reinterpret_cast<method>(jbox_free),
                          sizeof(t_jbox), nullptr, A_GIMME, 0);
        inert->c_flags |= CLASS_FLAG_NEWDICTIONARY;
        jbox_initclass(inert, 0);
        class_addmethod(inert, reinterpret_cast<method>(inert_anything), "anything", A_GIMME, 0);
    }
    return *static_cast<Class *>(inert);
}

} // namespace maxhost
