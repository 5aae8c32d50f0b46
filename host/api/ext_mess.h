// Symbols, atoms, object headers and message codes.
#pragma once

#include "max_types.h"

HOST_API_BEGIN

struct object;

// An interned text. Two symbols with the same text are the same pointer; s_name is never written.
// s_thing is the object bound to the symbol as a receiver, or null; the binding does not keep it alive.
typedef struct symbol {
    char *s_name;
    struct object *s_thing;
} t_symbol;

typedef void t_inlet;
typedef void t_outlet;
typedef void t_qelem;

#define OB_MAGIC 1758379419

// First member of every instance. o_magic is OB_MAGIC as long as the object is alive.
typedef struct object {
    struct messlist *o_messlist;
    t_ptr_int o_magic;
    t_inlet *o_inlet;
    t_outlet *o_outlet;
} t_object;

// A class. Only c_flags is a plug-in's to change; everything else is the host's.
typedef struct maxclass {
    long c_flags;
} t_class;

// c_flags: the constructor is handed a dictionary, and declared attribute defaults apply at creation. Without it a box
// gets the typed arguments alone. class_register refuses a class with any other flag.
#define CLASS_FLAG_NEWDICTIONARY 4

union word {
    t_atom_long w_long;
    t_atom_float w_float;
    t_symbol *w_sym;
    t_object *w_obj;
};

typedef struct atom {
    short a_type; // A_LONG, A_FLOAT, A_SYM or A_OBJ
    union word a_w;
} t_atom;

// Atom types, and argument codes of a method's type list.
enum {
    A_NOTHING = 0, // ends a type list
    A_LONG = 1,
    A_FLOAT = 2, // an atom type only: this host passes floats to methods as atoms (A_GIMME)
    A_SYM = 3,
    A_OBJ = 4,
    A_GIMME = 8, // any atoms, as count and array
    A_CANT = 9   // called by the host only, never from a patch
};

#define MSG_MAXARG 7 // typed arguments of one method at the most

// Any function of the API's making; handlers are cast to it and called by their own type.
typedef void *(*method)(void *);

HOST_API_END
