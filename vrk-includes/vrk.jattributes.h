// Getters and setters for one stored value, in the shape of the host's attribute accessors.
//
// `attr` is not looked at. A getter writes into the array it is handed when *argc and *argv are set, else into a new
// one that the caller frees with sysmem_freeptr (the SDK's rule for getters). Its result is 0, or MAX_ERR_OUT_OF_MEM
// when there is no room for the atoms. A setter looks at the type of an atom and converts nothing: -2
// (MAX_ERR_INVALID_PTR) when the first atom is missing or of another type, and the field stays as it is; else 0.
// Further atoms are ignored. Values are not clamped. No locking: who shares a field between threads guards it.
#pragma once

#include "ext.h"
#include "jpatcher_api.h"

// One integer atom. 16-bit and 8-bit fields are widened by the caller. The setters keep the low 16 or 8 bits.
t_max_err jattributes_getlong(long value, void *attr, long *argc, t_atom **argv);
t_max_err jattributes_long(long *field, void *attr, long argc, t_atom *argv);
t_max_err jattributes_short(short *field, void *attr, long argc, t_atom *argv);
t_max_err jattributes_char(char *field, void *attr, long argc, t_atom *argv);

// One float atom.
t_max_err jattributes_getfloat(double value, void *attr, long *argc, t_atom **argv);
t_max_err jattributes_float(double *field, void *attr, long argc, t_atom *argv);

// One symbol atom.
t_max_err jattributes_getsym(t_symbol *value, void *attr, long *argc, t_atom **argv);
t_max_err jattributes_sym(t_symbol **field, void *attr, long argc, t_atom *argv);

// Four float atoms, red green blue alpha; an array that is handed to the getter holds four. The setter stores as it
// reads: the components before a missing or mistyped atom are set, the others stay, and the result is -2.
t_max_err jattributes_getjrgba(const t_jrgba *value, void *attr, long *argc, t_atom **argv);
t_max_err jattributes_jrgba(t_jrgba *field, void *attr, long argc, t_atom *argv);
