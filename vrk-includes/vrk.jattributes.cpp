// Getters and setters for one stored value, in the shape of the host's attribute accessors.
#include "vrk.jattributes.h"

#include "jgraphics.h"

// The atom that a scalar getter fills, or null when memory runs out.
static t_atom *room_for_one(long *argc, t_atom **argv) {
    char allocated = 0;
    return atom_alloc(argc, argv, &allocated) ? nullptr : *argv;
}

static bool has_type(long index, long type, long argc, const t_atom *argv) {
    return index < argc && atom_gettype(argv + index) == type;
}

t_max_err jattributes_getlong(long value, void *, long *argc, t_atom **argv) {
    t_atom *atom = room_for_one(argc, argv);
    return atom ? atom_setlong(atom, value) : MAX_ERR_OUT_OF_MEM;
}

t_max_err jattributes_long(long *field, void *, long argc, t_atom *argv) {
    if (!has_type(0, A_LONG, argc, argv))
        return MAX_ERR_INVALID_PTR;
    *field = (long)atom_getlong(argv);
    return MAX_ERR_NONE;
}

t_max_err jattributes_short(short *field, void *, long argc, t_atom *argv) {
    if (!has_type(0, A_LONG, argc, argv))
        return MAX_ERR_INVALID_PTR;
    *field = (short)atom_getlong(argv);
    return MAX_ERR_NONE;
}

t_max_err jattributes_char(char *field, void *, long argc, t_atom *argv) {
    if (!has_type(0, A_LONG, argc, argv))
        return MAX_ERR_INVALID_PTR;
    *field = (char)atom_getlong(argv);
    return MAX_ERR_NONE;
}

t_max_err jattributes_getfloat(double value, void *, long *argc, t_atom **argv) {
    t_atom *atom = room_for_one(argc, argv);
    return atom ? atom_setfloat(atom, value) : MAX_ERR_OUT_OF_MEM;
}

t_max_err jattributes_float(double *field, void *, long argc, t_atom *argv) {
    if (!has_type(0, A_FLOAT, argc, argv))
        return MAX_ERR_INVALID_PTR;
    *field = atom_getfloat(argv);
    return MAX_ERR_NONE;
}

t_max_err jattributes_getsym(t_symbol *value, void *, long *argc, t_atom **argv) {
    t_atom *atom = room_for_one(argc, argv);
    return atom ? atom_setsym(atom, value) : MAX_ERR_OUT_OF_MEM;
}

t_max_err jattributes_sym(t_symbol **field, void *, long argc, t_atom *argv) {
    if (!has_type(0, A_SYM, argc, argv))
        return MAX_ERR_INVALID_PTR;
    *field = atom_getsym(argv);
    return MAX_ERR_NONE;
}

t_max_err jattributes_getjrgba(const t_jrgba *value, void *, long *argc, t_atom **argv) {
    char allocated = 0;
    if (atom_alloc_array(4, argc, argv, &allocated) || !*argv)
        return MAX_ERR_OUT_OF_MEM;
    t_jrgba colour = *value; // the host's function takes no const colour
    jrgba_to_atoms(&colour, *argv);
    return MAX_ERR_NONE;
}

t_max_err jattributes_jrgba(t_jrgba *field, void *, long argc, t_atom *argv) {
    double *const components[] = {&field->red, &field->green, &field->blue, &field->alpha};
    long index = 0;
    for (double *component : components) {
        if (!has_type(index, A_FLOAT, argc, argv))
            return MAX_ERR_INVALID_PTR; // what was read before stays: two floats set red and green
        *component = atom_getfloat(argv + index++);
    }
    return MAX_ERR_NONE;
}
