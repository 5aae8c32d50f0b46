// Atoms as text: how messages are typed, and how atoms print.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ext_mess.h"
#include "kernel/export.h"

namespace maxhost {

// One message of a typed text. `receiver` is empty for the messages before the first semicolon. Words that begin with
// $1 to $9, the dollar not behind a backslash, stand in it as they are; their places are told.
struct TypedMessage {
    t_symbol *receiver = nullptr;
    std::vector<t_atom> atoms;
    std::vector<size_t> changeable; // places in `atoms`
    bool changeable_receiver = false;
};

// Splits a text as a message box does: atoms at white space, messages at commas, and behind a semicolon the name of a
// receiver and messages for it. Double quotes make one symbol, a backslash takes the next character as it is. Integers
// that do not fit become floats. Never fails: an open quote ends with the text.
MAXHOST_EMBED std::vector<TypedMessage> parse_messages(std::string_view text);

// The atoms of a text that is one list: commas and semicolons are ordinary characters.
MAXHOST_EMBED std::vector<t_atom> parse_atoms(std::string_view text);

// The number that a word reads as, an integer or a float atom; false when it is none.
MAXHOST_EMBED bool parse_number(std::string_view word, t_atom &number);

// An atom as it would be typed, so that it reads back as the same atom: floats with the fewest digits and always a
// point, symbols in quotes where they need them, control characters as \n, \t, \r or \xHH.
MAXHOST_EMBED std::string print_atom(const t_atom &atom);
MAXHOST_EMBED std::string print_atoms(std::span<const t_atom> atoms);
MAXHOST_EMBED std::string print_float(double value);

// Atoms as typed text that reads back as the same atoms: as they print, but that control characters stay what they are.
MAXHOST_EMBED std::string typed_atoms(std::span<const t_atom> atoms);

// The text with its control characters replaced as above; `quoted`: between double quotes, with a backslash before
// quotes and backslashes.
MAXHOST_EMBED std::string print_text(std::string_view text);
MAXHOST_EMBED std::string print_quoted(std::string_view text);

} // namespace maxhost
