// What the sources of the host's own boxes share.
#include "ui/boxes/hostbox.h"

#include <algorithm>

#include "ext_strings.h"
#include "kernel/atomtext.h"

namespace maxhost {
namespace {

constexpr long longest_assistance = 512; // what the host hands over, in bytes

} // namespace

std::span<const t_atom> typed_arguments(long argc, t_atom *argv) {
    return {argv + 1, static_cast<size_t>(argc > 1 ? argc - 1 : 0)};
}

void assist_with(char *text, long kind, long index, std::initializer_list<const char *> inlets,
                 std::initializer_list<const char *> outlets) {
    const std::initializer_list<const char *> &texts = kind == 1 ? inlets : outlets;
    if (index >= 0 && texts.size() > 0)
        strncpy_zero(text, texts.begin()[std::min(static_cast<size_t>(index), texts.size() - 1)], longest_assistance);
}

bool send_atoms(void *outlet, std::span<const t_atom> atoms) {
    const Message message = message_of(atoms);
    return send_through(outlet, message.selector, message.arguments) != nullptr;
}

bool send_bang(void *outlet) { return send_through(outlet, gensym("bang"), {}) != nullptr; }

bool send_int(void *outlet, t_atom_long number) { return outlet_int(outlet, number) != nullptr; }

bool send_float(void *outlet, double number) {
    const t_atom atom = float_atom(number);
    return send_through(outlet, gensym("float"), {&atom, 1}) != nullptr;
}

BoxText read_text(const t_dictionary *dictionary) {
    BoxText text;
    long count = 0;
    t_atom *atoms = nullptr;
    if (dictionary_getatoms(dictionary, gensym("text"), &count, &atoms) != MAX_ERR_NONE)
        return text;
    text.kept.assign(atoms, atoms + count);
    const bool is_text = count == 1 && atom_gettype(atoms) == A_SYM;
    text.shown = is_text ? atom_getsym(atoms)->s_name : typed_atoms(text.kept);
    return text;
}

void change_text(BoxText &text, std::string shown) {
    text.shown = std::move(shown);
    text.kept.assign(1, symbol_atom(gensym(text.shown.c_str())));
}

void refuse_long_text(const t_jbox &box) {
    end_event(&box.b_ob, "text too long: more than 32767 words or 1000000 bytes");
}

void save_text(t_dictionary *dictionary, const BoxText &text) {
    std::vector<t_atom> atoms = text.kept;
    if (!atoms.empty())
        dictionary_appendatoms(dictionary, gensym("text"), static_cast<long>(atoms.size()), atoms.data());
}

} // namespace maxhost
