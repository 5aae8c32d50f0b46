// Patchers, boxes and patcher views.
#pragma once

#include "ext_maxtypes.h"
#include "ext_obex.h"

HOST_API_BEGIN

typedef struct _rect {
    double x, y, width, height;
} t_rect;

typedef struct _jrgba {
    double red, green, blue, alpha; // 0 to 1
} t_jrgba;

// First member of a user-interface box. Rectangle and font are read with the functions below.
typedef struct _jbox {
    t_object b_ob;
    void *obex; // the host's
    t_object *b_patcher;
    t_rect b_patching_rect;
    t_rect b_presentation_rect;
    t_symbol *b_name; // scripting name, or null
    t_symbol *b_id;
    t_object *b_firstin; // what messages to the first inlet reach; the plug-in sets it, after jbox_new
} t_jbox;

// Flags of jbox_initclass. The two others are kept for the program that shows the box; vrk-window offers neither.
#define JBOX_COLOR (1 << 13)    // a colour to choose
#define JBOX_FONTATTR (1 << 18) // the attributes "fontname" and "fontsize"
#define JBOX_FIXWIDTH (1 << 19) // to make the box as wide as its text

// Flags of jbox_new: wishes that are kept for the program that shows the box. vrk-window does not look at them.
#define JBOX_DRAWFIRSTIN 1 // to have the first inlet drawn
#define JBOX_NODRAWBOX 2   // to have no frame
#define JBOX_DRAWINLAST 4  // to have inlets drawn after what the box paints
#define JBOX_GROWBOTH 64   // to have width and height changed one by one

// Gives a class the attributes of a box, "patching_rect" and what the flags ask for. Before class_addmethod. Flags that
// this host does not have are misuse, and the class then is none of boxes.
void jbox_initclass(t_class *c, long flags);

// Builds the box part of an instance from the arguments of its constructor; the box hears its own notifications from
// then on. Flags that this host does not have are misuse, MAX_ERR_GENERIC. jbox_ready is the last step of construction,
// jbox_free undoes jbox_new.
t_max_err jbox_new(t_jbox *b, long flags, long argc, t_atom *argv);
void jbox_ready(t_jbox *b);
void jbox_free(t_jbox *b);

// The host's own handling of a notification: a box is painted again when one of its attributes with the attribute
// "paint" has changed ("attr_modified"). MAX_ERR_GENERIC for a message that the host does nothing about.
t_max_err jbox_notify(t_jbox *b, t_symbol *s, t_symbol *msg, void *sender, void *data);

// Asks for a repaint; many within one event are one.
void jbox_redraw(t_jbox *b);

// The font of a box; the size is in points. The setters set the attribute, so that "attr_modified" follows.
t_symbol *jbox_get_fontname(t_object *b);
double jbox_get_fontsize(t_object *b);
t_max_err jbox_set_fontname(t_object *b, t_symbol *ps);
t_max_err jbox_set_fontsize(t_object *b, double d);

// The name of an old font number.
t_symbol *fontinfo_getname(short number);

t_object *jbox_get_patcher(t_object *b); // null when the box is in none
t_max_err jbox_get_patching_rect(t_object *box, t_rect *pr);

// Marks a patcher changed (1) or not (0).
t_max_err jpatcher_set_dirty(t_object *p, char c);

// The graphics context of a patcher view that is being painted, a t_jgraphics * of the host's; null at other times.
t_object *patcherview_get_jgraphics(t_object *pv);

HOST_API_END
