// Reading and writing of the list box.
#include <algorithm>
#include <cstring>
#include <limits>

#include "vrk.tessaroll.h"

// The longest name that is read, in bytes.
static constexpr size_t longest_name = 2048;

void tessaroll_read(t_tessaroll *box, t_symbol *name) {
    if (std::strlen(name->s_name) > longest_name) {
        object_error((t_object *)box, "path too long! (%s)", name->s_name);
        return;
    }
    {
        critical_section hold;
        box->read_name = name;
    }
    qelem_set(box->read_qelem);
}

// A "clear" may have taken the name away, on the other thread as well.
static t_symbol *name_to_read(const t_tessaroll *box) {
    critical_section hold;
    return box->read_name;
}

void tessaroll_doread(t_tessaroll *box) {
    if (jlist_load_from_xml(box->jlist, box->xmlfile, name_to_read(box)))
        tessaroll_markchanged(box);
}

// Only the first atom is looked at; the count is bounded because defer_low's is a short.
void tessaroll_write(t_tessaroll *box, t_symbol *message, long argc, t_atom *argv) {
    const long count = std::min<long>(argc, std::numeric_limits<short>::max());
    defer_low(box, (method)tessaroll_dowrite, message, (short)count, argv);
}

void tessaroll_dowrite(t_tessaroll *box, t_symbol *message, short argc, t_atom *argv) {
    jlist_write(box->jlist, message, argc, argv);
    int error = 0;
    if (const t_symbol *name = jlist_unwritten(box->jlist, &error))
        object_error((t_object *)box, "unable to write %s (%s)", name->s_name, std::strerror(error));
}
