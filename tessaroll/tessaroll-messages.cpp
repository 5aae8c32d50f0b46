// Messages of the list box: moving, output and editing.
#include <algorithm>
#include <limits>

#include "vrk.tessaroll.h"

// ---- moving

// A number that is too large for a row is as good as the nearest that is not.
static long row_of(t_atom_long number) {
    return (long)std::clamp<t_atom_long>(number, std::numeric_limits<long>::min(), std::numeric_limits<long>::max());
}

void tessaroll_int(t_tessaroll *box, t_atom_long number) { jlist_int(box->jlist, row_of(number)); }
void tessaroll_set(t_tessaroll *box, t_atom_long number) { jlist_set(box->jlist, row_of(number)); }
void tessaroll_next(t_tessaroll *box) { jlist_next(box->jlist); }
void tessaroll_previous(t_tessaroll *box) { jlist_previous(box->jlist); }
void tessaroll_home(t_tessaroll *box) { jlist_home(box->jlist); }
void tessaroll_end(t_tessaroll *box) { jlist_end(box->jlist); }

// ---- output

// The text is the selector. False when the receivers nest too deeply to go on.
static bool put_out_item(t_tessaroll *box, void *item) {
    return outlet_anything(box->item_outlet, (t_symbol *)item, 0, nullptr);
}

void tessaroll_bang(t_tessaroll *box) {
    void *item = jlist_bang(box->jlist);
    if (!item)
        return;
    put_out_item(box, item);
    outlet_int(box->count_outlet, jlist_numrows(box->jlist));
    outlet_int(box->index_outlet, jlist_currow(box->jlist));
}

void tessaroll_sendout(t_tessaroll *box) {
    void *item = jlist_bang(box->jlist);
    if (!item)
        return;
    put_out_item(box, item);
    outlet_int(box->index_outlet, jlist_currow(box->jlist));
}

void tessaroll_length(t_tessaroll *box) { outlet_int(box->count_outlet, jlist_numrows(box->jlist)); }

// Asks for every row anew, since the list may change while the receivers are at work.
void tessaroll_dump(t_tessaroll *box) {
    long row = 1;
    while (void *item = jlist_getdata(box->jlist, row)) {
        if (!put_out_item(box, item) || !outlet_int(box->index_outlet, row))
            return;
        row++;
    }
}

void tessaroll_preset(t_tessaroll *box) { preset_int((t_object *)box, jlist_currow(box->jlist)); }

// ---- editing

void tessaroll_append(t_tessaroll *box, t_symbol *text) {
    t_atom item;
    atom_setsym(&item, text);
    defer_low(box, (method)tessaroll_doappend, gensym("append"), 1, &item);
    tessaroll_markchanged(box);
}

static void defer_edit(t_tessaroll *box, t_symbol *mode, t_atom_long position, t_symbol *text) {
    t_atom arguments[2];
    atom_setsym(arguments, text);
    atom_setlong(arguments + 1, position);
    defer_low(box, (method)tessaroll_doappend, mode, 2, arguments);
    tessaroll_markchanged(box);
}

void tessaroll_insert(t_tessaroll *box, t_atom_long position, t_symbol *text) {
    defer_edit(box, gensym("insert"), position, text);
}

void tessaroll_replace(t_tessaroll *box, t_atom_long position, t_symbol *text) {
    defer_edit(box, gensym("replace"), position, text);
}

void tessaroll_doappend(t_tessaroll *box, t_symbol *mode, short argc, t_atom *argv) {
    jlist_append(box->jlist, mode, atom_getsym(argv), argc, argv);
}

// Numbers below the list are all the row 0, which is none.
void tessaroll_delete(t_tessaroll *box, t_atom_long number) {
    jlist_setdelete(box->jlist, row_of(std::max<t_atom_long>(number, 0)) - 1);
    qelem_set(box->delete_qelem);
}

void tessaroll_dodelete(t_tessaroll *box) {
    const short result = jlist_delete(box->jlist);
    if (result == JLIST_TOO_FEW_ROWS)
        tessaroll_clear(box);
    else if (result == JLIST_DELETED)
        tessaroll_markchanged(box);
}

void tessaroll_erase(t_tessaroll *box) { jbox_redraw(&box->box); }

void tessaroll_clear(t_tessaroll *box) {
    {
        critical_section hold;
        jlist_clear(box->jlist);
        box->read_name = nullptr;
    }
    outlet_int(box->count_outlet, 0);
    tessaroll_markchanged(box);
}
