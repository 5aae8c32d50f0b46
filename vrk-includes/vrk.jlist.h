// The list model: rows with a current row, the data view that shows them, and their reading and writing as XML.
//
// Rows are numbered from 1, and the view's row ids are these numbers; 0 is no row. The list has data when it has a row
// array, which a load of no resources leaves without rows. Rows, counts and positions may be asked for and changed on
// the main and the scheduler thread: every function here holds the host's global critical region where it touches them.
// Rows are added on the main thread only; a "clear" can come from the scheduler thread at any moment.
#pragma once

#include "vrk.owners.h" // first: libxml2's headers come before the host's, whose macros could bite

#include "vrk.jxmlfile.h"

#include "ext.h"
#include "jdataview.h"
#include "jgraphics.h"
#include "jpatcher_api.h"

// The file type of a resource file, 'TEXT'.
inline constexpr t_fourcc JLIST_FILE_TYPE = 0x54455854;

typedef struct jlist {
    t_object *owner;      // errors are posted against it; the client of the view
    t_object *dataview;   // null before jlist_initdataview
    void **items;         // from malloc: row r is items[r - 1], a t_symbol or a t_jsurface (or null); null without data
    long selected_row;    // the row that the view was last told to select
    long current_row;     // the row that jlist_bang gives and that is highlighted
    long row_count;       // of a load that gave up: the number counted, while there is no data
    long edit_index;      // 0-based row of the running or last edit
    long delete_index;    // 0-based row that the next jlist_delete removes
    long file_type;       // four-character code given at creation, not looked at
    short frame;          // "frame"
    t_jrgba select_color; // "selectcolor"
    t_symbol *column_name; // the view's one column; "vrk.tessaroll": a list of texts, any other: one of images
    char replace_mode;     // the running or last edit is a replace
    t_symbol *unwritten;   // the file that the last jlist_write could not write; null when there is none
    int write_error;       // why: an error number (errno.h)
} t_jlist;

// ---- life; main thread

// An empty list without a view, or null when memory runs out.
t_jlist *jlist_new(t_object *owner, t_symbol *column_name, long file_type);

// Releases rows, images, view and record; null is accepted.
void jlist_free(t_jlist *list);

// ---- what is in the list; any thread

long jlist_hasdata(t_jlist *list); // 1 or 0
long jlist_numrows(t_jlist *list);
long jlist_currow(t_jlist *list);

// The item of a row; null when there is no such row. A symbol lives for ever, an image as long as its row.
void *jlist_getdata(t_jlist *list, long row);

// A reference to the image of a row, which outlives the row: nothing is locked while it is drawn or encoded. Null when
// there is none. Only of a list of images.
image_surface jlist_share_image(t_jlist *list, long row);

// The item of the current row, which becomes the selected one (the view is not told); null, and nothing changed, when
// the current row is none of the list's.
void *jlist_bang(t_jlist *list);

// ---- moving; any thread; without data nothing happens

// Makes a row current and selects it in the view. The row is clamped into the list; in a list without rows it is 1.
void jlist_int(t_jlist *list, long row);

// Makes a row current, clamped alike, and leaves the view without a selection; nothing when it is current already. The
// row that was current is not redrawn (docs/compatibility.md).
void jlist_set(t_jlist *list, long row);

// jlist_int with the row after or before the current one, the first, the last. They do not wrap.
void jlist_next(t_jlist *list);
void jlist_previous(t_jlist *list);
void jlist_home(t_jlist *list);
void jlist_end(t_jlist *list);

// The view tells that a person selected a row: it becomes current and selected, whatever its number.
void jlist_selected(t_jlist *list, t_symbol *column, long row);

// ---- editing

// Takes all rows out; destroys the images. Any thread.
void jlist_clear(t_jlist *list);

// Puts an item into the list and makes its row current; main thread. The mode is "append" (after the last row),
// "insert" (the item becomes row n, clamped into 1 to the number of rows + 1) or "replace" (in place of row n; nothing
// when there is no such row); n is the integer atom argv[1]. Any other mode repeats the slot and the kind of the last
// edit. An image becomes the list's in any case: it is destroyed when it finds no row, as is one that is replaced. When
// memory runs out the list stays as it was and an error is posted.
void jlist_append(t_jlist *list, t_symbol *mode, void *item, short argc, t_atom *argv);

// Notes the 0-based row that the next jlist_delete removes. Any thread.
void jlist_setdelete(t_jlist *list, long index);

// What jlist_delete did.
inline constexpr short JLIST_DELETED = 0, JLIST_TOO_FEW_ROWS = 1, JLIST_NOT_DELETED = 2;

// Removes the noted row; the row that takes its place, or else the last one, becomes current: JLIST_DELETED. Nothing
// changes when the list has fewer than two rows or no data (JLIST_TOO_FEW_ROWS: the caller then clears it), nor when
// there is no such row or memory runs out (JLIST_NOT_DELETED; for memory an error is posted). Main thread.
short jlist_delete(t_jlist *list);

// ---- the view; main thread

// Makes the view of the box, with rows for a font of `font_size` points. When it cannot be made the list stays without.
// The border is as thick as "frame" says now; a later "frame" does not reach the view, so that old patchers keep their
// looks.
void jlist_initdataview(t_object *box, t_jlist *list, double font_size);

long jlist_hasdataview(t_jlist *list); // 1 or 0

// Nothing without a view. The font of the view; the rows become 1.2 times as high as `size` points, in whole pixels.
// …setcellv: the height alone. Measures are truncated toward zero, here and in the width of the column.
void jlist_setfontname(t_jlist *list, t_symbol *name);
void jlist_setfontsize(t_jlist *list, double size);
void jlist_setcellv(t_jlist *list, double height);

// A patcher view opened or closed; nothing without a view.
void jlist_newpatcherview(t_jlist *list, t_object *patcherview);
void jlist_freepatcherview(t_jlist *list, t_object *patcherview);

// Paints a cell of `width` by `height` pixels: the item, and the highlight over it when the row is the current one. A
// row that is not in the list (any more) is left blank. `selected` is not looked at.
void jlist_custompaintcell(t_jlist *list, t_object *patcherview, t_symbol *column, long row, double width,
                           double height, char selected);

// What …paintcell uses: a text in the owner's font, its first 2047 bytes; an image in natural size in the middle.
void jlist_custompaint_gensym_cell(t_jlist *list, t_jgraphics *g, t_symbol *column, long row, double width,
                                   double height, char selected);
void jlist_custompaint_surface_cell(t_jlist *list, t_jgraphics *g, t_symbol *column, long row, double width,
                                    double height, char selected);

// ---- attribute accessors (vrk.jattributes.h)

t_max_err jlist_getframe(t_jlist *list, void *attr, long *argc, t_atom **argv);
t_max_err jlist_frame(t_jlist *list, void *attr, long argc, t_atom *argv);
t_max_err jlist_getselectcolor(t_jlist *list, void *attr, long *argc, t_atom **argv);
t_max_err jlist_selectcolor(t_jlist *list, void *attr, long argc, t_atom *argv);

// ---- files; main thread; errors are posted against the owner

// Replaces the rows with the resources of a file: those of the holder's second "xmlpath" word, numbered from 0 without
// gaps. The name is looked up in the search path. 1 when the list was loaded. 0, and nothing changed, without a name
// (no message) or when the file is not found or does not begin with "<?xml" (a null holder counts as that); 0, and the
// list without data, when its resources cannot be had. The holder keeps the document. Texts that lose letters outside
// of ASCII when they are trimmed are counted in a warning.
short jlist_load_from_xml(t_jlist *list, t_jxmlfile *holder, t_symbol *filename);

// Writes the rows as a new resource file, under "resourcefile" and "resource" whatever the owner's attributes say. The
// file is the one that the symbol argv[0] names; without one the save dialog asks. Of a list without data an empty file
// is made, when there is none. What fails leaves the file as vrk_replace_file does, and is not posted here, but for
// images that cannot be encoded, texts that XML cannot hold, and items for which memory runs out; jlist_unwritten tells
// it. `message` is not looked at.
void jlist_write(t_jlist *list, t_symbol *message, short argc, t_atom *argv);

// The name of the file that the last jlist_write could not write, as the patch or the user gave it, and in *error why:
// an error number (errno.h). Null when it was written, or nothing was to be, or jlist_write has posted the reason.
t_symbol *jlist_unwritten(const t_jlist *list, int *error);
