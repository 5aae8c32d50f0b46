// Atoms: setting, reading, and arrays of them.
#include <cmath>
#include <limits>

#include "ext_obex.h"
#include "ext_proto.h"
#include "ext_sysmem.h"
#include "kernel/atomtext.h"
#include "kernel/door.h"

using maxhost::at_door;

namespace {

// A float cut toward zero; what no integer can hold becomes the nearest one that exists, not-a-number 0.
t_atom_long truncated(double value) {
    constexpr auto limits = std::numeric_limits<t_atom_long>();
    if (std::isnan(value))
        return 0;
    if (value <= static_cast<double>(limits.min()))
        return limits.min();
    if (value >= static_cast<double>(limits.max()))
        return limits.max();
    return static_cast<t_atom_long>(value);
}

long type_of(const t_atom *atom) { return at_door(atom, "atom_gettype", "no atom") ? atom->a_type : 0; }

t_max_err set(t_atom *atom, const char *function, short type, word value) {
    if (!at_door(atom, function, "no atom"))
        return MAX_ERR_INVALID_PTR;
    atom->a_type = type;
    atom->a_w = value;
    return MAX_ERR_NONE;
}

bool reads_as_number(const t_atom *symbol, t_atom &number, const char *function) {
    return maxhost::guarded(function, false, [&] { return maxhost::parse_number(symbol->a_w.w_sym->s_name, number); });
}

} // namespace

t_max_err atom_setlong(t_atom *a, t_atom_long b) { return set(a, "atom_setlong", A_LONG, word{.w_long = b}); }
t_max_err atom_setfloat(t_atom *a, double b) { return set(a, "atom_setfloat", A_FLOAT, word{.w_float = b}); }
t_max_err atom_setsym(t_atom *a, t_symbol *b) {
    return set(a, "atom_setsym", A_SYM, word{.w_sym = b ? b : gensym("")});
}
t_max_err atom_setobj(t_atom *a, void *b) {
    return set(a, "atom_setobj", A_OBJ, word{.w_obj = static_cast<t_object *>(b)});
}

t_atom_long atom_getlong(const t_atom *a) {
    t_atom number;
    switch (type_of(a)) {
    case A_LONG:
        return a->a_w.w_long;
    case A_FLOAT:
        return truncated(a->a_w.w_float);
    case A_SYM:
        return reads_as_number(a, number, "atom_getlong") ? atom_getlong(&number) : 0;
    default:
        return 0;
    }
}

t_atom_float atom_getfloat(const t_atom *a) {
    t_atom number;
    switch (type_of(a)) {
    case A_LONG:
        return static_cast<t_atom_float>(a->a_w.w_long);
    case A_FLOAT:
        return a->a_w.w_float;
    case A_SYM:
        return reads_as_number(a, number, "atom_getfloat") ? atom_getfloat(&number) : 0;
    default:
        return 0;
    }
}

t_symbol *atom_getsym(const t_atom *a) {
    static t_symbol *const nothing = gensym("");
    return type_of(a) == A_SYM ? a->a_w.w_sym : nothing;
}

void *atom_getobj(const t_atom *a) { return type_of(a) == A_OBJ ? a->a_w.w_obj : nullptr; }

long atom_gettype(const t_atom *a) { return type_of(a); }

t_max_err atom_alloc(long *ac, t_atom **av, char *alloc) { return atom_alloc_array(1, ac, av, alloc); }

t_max_err atom_alloc_array(long minsize, long *ac, t_atom **av, char *alloc) {
    if (!at_door(ac && av && alloc && minsize > 0, "atom_alloc_array", "nothing to fill in"))
        return MAX_ERR_INVALID_PTR;
    *alloc = !(*ac >= minsize && *av);
    if (*alloc) {
        auto *atoms = reinterpret_cast<t_atom *>(sysmem_newptrclear(static_cast<t_ptr_size>(minsize) * sizeof(t_atom)));
        if (!atoms) {
            *alloc = 0;
            return MAX_ERR_OUT_OF_MEM;
        }
        *av = atoms;
    }
    *ac = minsize;
    return MAX_ERR_NONE;
}
