// Presets.
#include "kernel/presets.h"

#include "ext_obex.h"
#include "ext_proto.h"
#include "kernel/classes.h"
#include "kernel/objects.h"

bool maxhost::recall_preset(t_object *object) {
    const Record *record = record_of(object);
    if (!record || !record->preset)
        return false;
    t_atom number;
    atom_setlong(&number, *record->preset);
    deliver(object, gensym("int"), {&number, 1});
    return true;
}

void preset_int(t_object *x, t_atom_long n) {
    if (maxhost::Record *record = maxhost::expect_object(x, "preset_int"))
        record->preset = n;
}
