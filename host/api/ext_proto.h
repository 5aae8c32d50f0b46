// Symbols, outlets, deferral, clocks and presets.
#pragma once

#include "ext_mess.h"

HOST_API_BEGIN

// The symbol of the text; the text is copied and kept for ever. Any thread. It cannot fail, as callers use the result
// at once: when memory has run out, symbols come from a reserve, and the program ends when that is used up.
t_symbol *gensym(const char *s);

// A second creation name for the class that the plug-in registered last.
void alias(char *name);

// Deletes an object (object_free); the pointer must be one.
void freeobject(t_object *op);

// A new outlet at the left of the ones that `x` has, for the message `s` or, with null, for any message; intout: for
// integers. Freed with its object.
void *outlet_new(void *x, const char *s);
void *intout(void *x);

// Sends through an outlet, on the calling thread. The result, as a pointer value, is 1, or 0 when the receivers nest
// too deeply; then everything up to the event that started it should end.
void *outlet_int(t_outlet *x, t_atom_long n);
void *outlet_anything(t_outlet *x, t_symbol *s, short ac, t_atom *av);

// Queues fn(ob, sym, argc, copy of argv) for the main thread, behind what is queued. Dropped when `ob` is freed first,
// and with a line on the console when memory runs out.
void *defer_low(void *ob, method fn, t_symbol *sym, short argc, t_atom *argv);

// A task fn(obj) for the main thread; null when memory runs out. Setting it queues it unless it is queued, and cannot
// fail; freeing it takes it back.
void *qelem_new(void *obj, method fn);
void qelem_set(t_qelem *x);
void qelem_free(t_qelem *x);

// A task fn(obj) for later, released with object_free. Setting it (milliseconds, at least one; again: instead of
// before) has it run once; unset takes that back. Any thread; the task runs on the main one.
void *clock_new(void *obj, method fn);
void clock_fdelay(void *x, double f);
void clock_unset(void *x);

// Tells the preset mechanism that `n` sent as "int" brings the object back to where it is.
void preset_int(t_object *x, t_atom_long n);

HOST_API_END
