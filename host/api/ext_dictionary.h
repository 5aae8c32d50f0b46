// Dictionaries: atoms under keys, in order of their coming.
#pragma once

#include "ext_mess.h"

HOST_API_BEGIN

typedef struct _dictionary t_dictionary;

// 0 when the key is there. *argv points into the dictionary: not to be freed, not to be kept.
t_max_err dictionary_getatoms(const t_dictionary *d, t_symbol *key, long *argc, t_atom **argv);

// Copies the atoms in under the key, in place of what was there.
t_max_err dictionary_appendatoms(t_dictionary *d, t_symbol *key, long argc, t_atom *argv);

HOST_API_END
