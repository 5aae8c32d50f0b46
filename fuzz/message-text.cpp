// Typed messages: atoms read back as they print, and boxes take what is typed.
#include "fuzz.h"

using namespace maxhost;

// Infinity and what is no number cannot be typed.
static bool can_be_typed(std::span<const t_atom> atoms) {
    for (const t_atom &atom : atoms)
        if (atom_gettype(&atom) == A_FLOAT && !(std::abs(atom_getfloat(&atom)) <= 1e308))
            return false;
    return true;
}

FUZZ_TARGET(input) {
    if (fuzz::could_leave_the_folder(input))
        return;
    fuzz::Host host;
    for (const TypedMessage &message : parse_messages(input))
        if (const std::string typed = typed_atoms(message.atoms); can_be_typed(message.atoms))
            fuzz::expect(typed_atoms(parse_atoms(typed)) == typed, "reads back as something else: " + typed);
    t_object *patcher = new_patcher();
    for (const char *class_name : {"vrk.tessaroll", "message", "pack", "route", "counter"})
        host.send(host.box(patcher, class_name), input);
    free_patcher(patcher);
}
