// Messages: a selector and its arguments.
#pragma once

#include <span>
#include <vector>

#include "ext_mess.h"

namespace maxhost {

// The most atoms that a message between boxes may have, besides its selector: they are counted in 16 bits.
constexpr size_t most_atoms = 32767;
constexpr const char *too_long = "message too long: more than 32767 atoms";

struct Message {
    t_symbol *selector;
    std::span<const t_atom> arguments;
};

// The message that atoms in a row are: a symbol at the front is the selector, a lone number is "int" or "float",
// several atoms are "list", none are "bang". The arguments point into `atoms`.
Message message_of(std::span<const t_atom> atoms);

// The other way round: what a message carries, without the selector where it only tells the kind ("int", "float",
// "list", and "symbol" before one). Appended to `atoms`.
void append_message(std::vector<t_atom> &atoms, const Message &message);

} // namespace maxhost
