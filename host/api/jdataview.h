// The data view: columns, rows, a selection. Calls come from the main and the scheduler thread.
//
// Messages to its client: the custom-paint message of a column,
//   void f(T *x, t_object *patcherview, t_symbol *colname, t_rowref rr, int width, int height, int rowIsSelected),
// and "selected" when a person selects a row, void f(T *x, t_symbol *colname, t_rowref rr).
#pragma once

#include "jgraphics.h"
#include "jpatcher_api.h"

HOST_API_BEGIN

typedef void *t_rowref; // a row's id, pointer-sized; 0 names no row

// One column. Its flags, in this order, are single bytes; only the ones without a setter are stored directly.
typedef struct _col {
    t_object c_obj;
    char c_autosize;
    char c_alignment; // 1 left, 2 centre, 3 right
    char c_separator;
    char c_button;
    char c_overridesort;
    char c_editable;
    char c_selectable; // a cell can be selected without being editable
    char c_multiselectable;
    char c_sortable;
    char c_canselect;
} t_jcolumn;

// A view without rows, columns or client; released with object_free.
void *jdataview_new(void);
void jdataview_setclient(t_object *dv, t_object *client);

// Settings; heights and widths in pixels.
void jdataview_setborderthickness(t_object *dv, long val); // 0: none
t_max_err jdataview_setscrollvisible(t_object *x, long vbar, long hbar);
void jdataview_setheight(t_object *dv, long height); // of a row
void jdataview_setautosizerightcolumn(t_object *dv, long way);
void jdataview_setdragenabled(t_object *dv, long way);
void jdataview_setcolumnheaderheight(t_object *dv, double height);
void jdataview_setfontname(t_object *dv, t_symbol *fontname);
void jdataview_setfontsize(t_object *dv, double fsize);

// A new column in front of `before`, or at the end with null. It belongs to the view. `unused` is not looked at.
t_object *jdataview_addcolumn(t_object *dv, t_symbol *name, t_symbol *before, short unused);
void jcolumn_setwidth(t_object *col, long width);    // 50 before
void jcolumn_setmaxwidth(t_object *col, long width); // 100 before
void jcolumn_setcustompaint(t_object *col, t_symbol *msg);

// Attaches the view to a patcher view inside a box, and detaches it.
void jdataview_patchervis(t_object *dv, t_object *pv, t_object *box);
void jdataview_patcherinvis(t_object *dv, t_object *pv);

// Rows: takes all out; appends `count` rows with these ids (copied).
void jdataview_clear(t_object *dv);
void jdataview_addrows(t_object *dv, long count, t_rowref *rrs);

// Repaints a cell; selects a cell, without a word to the client. An id that is no row repaints nothing and takes the
// selection away.
void jdataview_redrawcell(t_object *dv, t_symbol *colname, t_rowref rr);
void jdataview_selectcell(t_object *dv, t_symbol *colname, t_rowref rr);

HOST_API_END
