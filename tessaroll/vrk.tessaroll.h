// The list box: its record and its message handlers.
//
// Handlers are named after their message; the deferred half of one adds "do". Unless something else is said they are
// called by the host on its main thread; "any thread" is the main or the scheduler thread. Item numbers start at 1.
#pragma once

#include "vrk.jlist.h"

#include "ext.h"
#include "jdataview.h"
#include "jpatcher_api.h"

typedef struct tessaroll {
    t_jbox box;          // the host's; has to come first
    t_jlist *jlist;      // the items; owned, there from construction to the end
    t_jxmlfile *xmlfile; // the document that "read" loads into; owned, may be null
    void *read_qelem;    // runs tessaroll_doread
    void *delete_qelem;  // runs tessaroll_dodelete
    void *item_outlet;   // right: the item's text as a message without arguments
    void *count_outlet;  // middle: number of items
    void *index_outlet;  // left: number of the item
    t_symbol *read_name; // what the next read reads, or null; used with the critical region held
    long cellh;          // "cellh", "cellv": cell width and height that old patchers save; kept, not looked at
    long cellv;
    double default_size; // font size in points; set, not looked at
    char embed;          // "embed": the items are saved in the patcher, and editing marks it changed
} t_tessaroll;

extern t_class *tessaroll_class;
extern t_symbol *bindMeBaby;  // "#X": bound to the box made last until its "done"
extern t_symbol *mycolumname; // the class's name: the column of the data view, and the mark of a list of texts

// Binds "#X" to a box, to none with null; the result is what it was bound to. Any thread: the word is exchanged whole,
// without the critical region.
t_object *tessaroll_bind(t_object *box);

// ---- life (vrk.tessaroll.cpp)

// A box from the dictionary in its arguments; null, with nothing left behind, without one or without memory.
void *tessaroll_new(t_symbol *name, long argc, t_atom *argv);
void tessaroll_free(t_tessaroll *box);

// Puts the six or more integers of an old argument list, left top width height cellh cellv, into the box dictionary;
// fewer change nothing. The result is 0.
long tessaroll_stdargs(t_dictionary *dictionary, t_symbol *name, long argc, t_atom *argv);

// ---- moving (tessaroll-messages.cpp); any thread; nothing is output

void tessaroll_int(t_tessaroll *box, t_atom_long number); // current and selected
void tessaroll_set(t_tessaroll *box, t_atom_long number); // current only
void tessaroll_next(t_tessaroll *box);
void tessaroll_previous(t_tessaroll *box);
void tessaroll_home(t_tessaroll *box);
void tessaroll_end(t_tessaroll *box);

// ---- output (tessaroll-messages.cpp); any thread; right to left, the critical region is not held

void tessaroll_bang(t_tessaroll *box);    // item, count, number of the current item; nothing when there is none
void tessaroll_sendout(t_tessaroll *box); // item and number, after a click
void tessaroll_length(t_tessaroll *box);  // count
void tessaroll_dump(t_tessaroll *box);    // item and number of every item; ends when the receivers nest too deeply
void tessaroll_preset(t_tessaroll *box);  // to the preset mechanism; of no message, so that a preset moves nothing

// ---- editing (tessaroll-messages.cpp); any thread; all but "clear" change the items later, on the main thread

void tessaroll_append(t_tessaroll *box, t_symbol *text);
void tessaroll_insert(t_tessaroll *box, t_atom_long position, t_symbol *text);
void tessaroll_replace(t_tessaroll *box, t_atom_long position, t_symbol *text);
void tessaroll_delete(t_tessaroll *box, t_atom_long number); // of several before it runs, the last one counts
void tessaroll_erase(t_tessaroll *box);                      // redraws alone; the items stay
void tessaroll_clear(t_tessaroll *box);                      // outputs the count 0

// The main thread's half: argv[0] is the text, argv[1] the position that "insert" and "replace" have.
void tessaroll_doappend(t_tessaroll *box, t_symbol *mode, short argc, t_atom *argv);
void tessaroll_dodelete(t_tessaroll *box);

// ---- saving and restoring (tessaroll-patcher.cpp)

// Marks the patcher changed, if the items are saved in it. Any thread.
void tessaroll_markchanged(t_tessaroll *box);

// The saved form is one symbol for each item under the key "restoreitems" of the box dictionary; there is no key when
// "embed" is off or there is no data.
void tessaroll_save(t_tessaroll *box, t_dictionary *dictionary);

// Queues the restoring of saved items, however many.
void tessaroll_deferrestore(t_tessaroll *box, long argc, t_atom *argv);

// Append items without marking the patcher changed. Texts of more than 2048 bytes are reported; "restoreitem" drops
// them and "restoreitems", through which saved items come, keeps them. "restoreitems" ends at the first atom that is
// not a symbol. …dorestorepiece restores a piece of many saved items; argv[0] is the number of atoms after the piece.
void tessaroll_restoreitem(t_tessaroll *box, t_symbol *text);
void tessaroll_restoreitems(t_tessaroll *box, t_symbol *message, long argc, t_atom *argv);
void tessaroll_dorestoreitems(t_tessaroll *box, t_symbol *message, short argc, t_atom *argv);
void tessaroll_dorestorepiece(t_tessaroll *box, t_symbol *message, short argc, t_atom *argv);

// Sets the font; -1 leaves the size or the face alone.
void tessaroll_restore(t_tessaroll *box, t_atom_long size, t_atom_long font_number);

// Unbinds "#X", whoever is bound.
void tessaroll_done(t_tessaroll *box);

// ---- files (tessaroll-files.cpp); any thread; the work is done later, on the main thread

void tessaroll_read(t_tessaroll *box, t_symbol *name); // of several before it runs, the last one counts
void tessaroll_doread(t_tessaroll *box);
void tessaroll_write(t_tessaroll *box, t_symbol *message, long argc, t_atom *argv);
void tessaroll_dowrite(t_tessaroll *box, t_symbol *message, short argc, t_atom *argv);

// ---- what the host and the data view ask (tessaroll-notify.cpp)

t_max_err tessaroll_notify(t_tessaroll *box, t_symbol *sender_name, t_symbol *message, void *sender, void *data);
void tessaroll_assist(t_tessaroll *box, void *b, long m, long a, char *text);

void tessaroll_newpatcherview(t_tessaroll *box, t_object *patcherview);
void tessaroll_freepatcherview(t_tessaroll *box, t_object *patcherview);
void tessaroll_custompaintcell(t_tessaroll *box, t_object *patcherview, t_symbol *column, t_rowref row, int width,
                               int height, int selected);
void tessaroll_selected(t_tessaroll *box, t_symbol *column, t_rowref row);

// Accessors of the attributes whose values live in the list or in the document holder; -2 without a holder.
t_max_err tessaroll_getframe(t_tessaroll *box, void *attr, long *argc, t_atom **argv);
t_max_err tessaroll_frame(t_tessaroll *box, void *attr, long argc, t_atom *argv);
t_max_err tessaroll_getselectcolor(t_tessaroll *box, void *attr, long *argc, t_atom **argv);
t_max_err tessaroll_selectcolor(t_tessaroll *box, void *attr, long argc, t_atom *argv);
t_max_err tessaroll_getroot(t_tessaroll *box, void *attr, long *argc, t_atom **argv);
t_max_err tessaroll_root(t_tessaroll *box, void *attr, long argc, t_atom *argv);
t_max_err tessaroll_getxmlpath(t_tessaroll *box, void *attr, long *argc, t_atom **argv);
t_max_err tessaroll_xmlpath(t_tessaroll *box, void *attr, long argc, t_atom *argv);
