// Classes, objects, attributes and atoms.
#pragma once

#include "ext_dictionary.h"
#include "ext_mess.h"

HOST_API_BEGIN

#define CLASS_BOX gensym("box")
#define CLASS_NOBOX gensym("nobox")

#define ATTR_FLAGS_NONE 0 // readable and settable; this host has no other flags, and refuses them

// ---- classes; main thread, while a plug-in is loaded

// Describes a class of instances of `size` bytes; class_register publishes it. `mmenu` is obsolete, 0. The codes after
// `type` end with 0; with A_GIMME the constructor is (t_symbol *, long, t_atom *).
t_class *class_new(const char *name, const method mnew, const method mfree, long size, const method mmenu, short type,
                   ...);

// Adds a method; the codes end with 0.
t_max_err class_addmethod(t_class *c, const method m, const char *name, ...);

// Publishes the class in a name space. Its method table cannot grow afterwards.
t_max_err class_register(t_symbol *name_space, t_class *c);

// ---- attributes
//
// getter: t_max_err g(T *x, void *attr, long *ac, t_atom **av) fills the array it is handed, or allocates one
// (atom_alloc) that the caller frees with sysmem_freeptr; setter: t_max_err s(T *x, void *attr, long ac, t_atom *av).

// An attribute whose value lives at `offset` in the instance, of the type "long", "char", "float64" or "symbol"; null
// accessors are the built-in ones. The array form holds exactly `size` elements (`offsetcount` 0).
t_object *attr_offset_new(const char *name, const t_symbol *type, long flags, const method mget, const method mset,
                          long offset);
t_object *attr_offset_array_new(const char *name, t_symbol *type, long size, long flags, const method mget,
                                const method mset, long offsetcount, long offset);

// Adds an attribute; the class owns it afterwards.
t_max_err class_addattr(t_class *c, t_object *attr);

// An attribute of the class, a t_object *, or null. It answers "setmethod" ("get" or "set", function), "gettype" and
// "getname".
void *class_attr_get(t_class *x, t_symbol *attrname);

// Runs the setter of an attribute; its result, or MAX_ERR_GENERIC when there is no such attribute.
t_max_err object_attr_setchar(void *x, t_symbol *s, char c);
t_max_err object_attr_setsym(void *x, t_symbol *s, t_symbol *c);

// Runs the setter of every attribute that the dictionary has a key for.
void attr_dictionary_process(void *x, t_dictionary *d);

// ---- objects

// A zero-filled instance with its header set, or null.
void *object_alloc(t_class *c);

// Runs the free function of the class and releases the memory; null is accepted.
t_max_err object_free(void *x);

// Makes an object of a registered class; the arguments go to its constructor untyped. Null on failure.
void *object_new_imp(void *p1, void *p2, void *p3, void *p4, void *p5, void *p6, void *p7, void *p8, void *p9,
                     void *p10);

// Calls the method `sym` untyped and gives its result; 0 when the object has no such method.
void *object_method_imp(void *x, void *sym, void *p1, void *p2, void *p3, void *p4, void *p5, void *p6, void *p7,
                        void *p8);

// Both as plug-ins write them: up to eight further words, integers and pointers, no doubles and no records.
#define HOST_WORD(w) ((void *)(t_ptr_int)(w))
#define HOST_WORDS_10(f, a, b, c, d, e, g, h, i, j, k, ...)                                                            \
    f(HOST_WORD(a), HOST_WORD(b), HOST_WORD(c), HOST_WORD(d), HOST_WORD(e), HOST_WORD(g), HOST_WORD(h), HOST_WORD(i),  \
      HOST_WORD(j), HOST_WORD(k))
#define object_new(...) HOST_WORDS_10(object_new_imp, __VA_ARGS__, 0, 0, 0, 0, 0, 0, 0, 0, 0)
#define object_method(...) HOST_WORDS_10(object_method_imp, __VA_ARGS__, 0, 0, 0, 0, 0, 0, 0, 0, 0)

// The dictionary carried in the arguments of a constructor, not the caller's to free; null when there is none.
t_dictionary *object_dictionaryarg(long ac, t_atom *av);

// ---- atoms

t_max_err atom_setlong(t_atom *a, t_atom_long b);
t_max_err atom_setfloat(t_atom *a, double b);
t_max_err atom_setsym(t_atom *a, t_symbol *b);
t_max_err atom_setobj(t_atom *a, void *b); // any pointer; who owns it does not change
t_atom_long atom_getlong(const t_atom *a); // floats are truncated, a symbol counts as the number it reads as, else 0
t_atom_float atom_getfloat(const t_atom *a);
t_symbol *atom_getsym(const t_atom *a); // the empty symbol for any other type
void *atom_getobj(const t_atom *a);     // null for any other type
long atom_gettype(const t_atom *a);

// Room for one atom (at least `minsize`): the caller's own when *ac and *av are set, else a new array to be freed with
// sysmem_freeptr. Sets *ac to the count and *alloc to whether memory was allocated.
t_max_err atom_alloc(long *ac, t_atom **av, char *alloc);
t_max_err atom_alloc_array(long minsize, long *ac, t_atom **av, char *alloc);

HOST_API_END
