// JSON: reading within bounds, writing in the layout of patcher files, and atoms as JSON values.
#pragma once

#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "ext_mess.h"

namespace maxhost {

// Keeps the order of keys, a key that is there twice, and integers apart from floats.
using Json = nlohmann::ordered_json;

// Reads a text. False with the place and the reason ("line 3, column 7: …") when it is no JSON, is not UTF-8, has a
// number that no double can hold, or is nested more than 512 deep; `value` is then of no use.
bool parse_json(const std::string &text, Json &value, std::string &reason);

// The text of a value: four spaces a level, lists of plain values in one line. What is not UTF-8 becomes replacement
// characters, and `replaced` true.
std::string json_text(const Json &value, bool &replaced);

// A value, or the members of a list of values, as atoms: true and false are 1 and 0. False when there is anything else
// in it.
bool to_atoms(const Json &value, std::vector<t_atom> &atoms);

// A single atom becomes a value, unless `as_list`; any other number of them a list.
Json to_json(std::span<const t_atom> atoms, bool as_list);

// Sets a key. A new one stands where the alphabet has it when the keys that are there are in that order, else at the
// end.
void put(Json &object, const std::string &key, Json value);

// A member of an object; null when there is none, or `object` is no object.
const Json *member(const Json &object, const char *key);

// Empties a value from its leaves up, which needs no memory; to be called before a value goes for good. The library's
// own destructor takes memory for a value that has members, and ends the program when there is none.
void dismantle(Json &value) noexcept;

// "an object", "a list", "a text", "a number", …
const char *kind_of(const Json &value);

} // namespace maxhost
