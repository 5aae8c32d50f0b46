// Writing patchers: what their files said, with what has changed since put in.
#pragma once

#include "ui/json.h"
#include "ui/patcher.h"

namespace maxhost {

// Makes a box that is in no file yet, of a class of the name space "box"; its dictionary and arguments are kept for the
// file that it is saved in. Null when there is no such class, or it makes none.
t_object *make_new_box(Patcher &patcher, t_symbol *class_name, t_dictionary *dictionary,
                       std::span<const t_atom> arguments);

// The whole of a file for a patcher: what was read, where it was, but for attributes that have other values than then,
// what the boxes bring in "jsave", boxes and cords that are gone, and ones that are new. What is kept of the patcher
// becomes what is answered here.
Json saved_file(Patcher &patcher);

} // namespace maxhost
