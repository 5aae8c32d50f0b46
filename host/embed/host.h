// What a program that embeds the host calls. Main thread, unless said otherwise.
//
// Patchers, boxes and patcher views are handed out as t_object pointers; they stay valid until the call that frees
// them. Nothing here is deferred: what plug-ins queue runs when the program drains the queue (drain_queue). When memory
// runs out these functions throw std::bad_alloc; what plug-ins call never throws.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "embed/shown.h"
#include "ext_obex.h"
#include "files/filestamp.h"
#include "files/paths.h"
#include "files/sysfile.h"
#include "files/wholefile.h"
#include "kernel/atomtext.h"
#include "kernel/clocks.h"
#include "kernel/dictionary.h"
#include "kernel/export.h"
#include "kernel/frontend.h"
#include "kernel/plugins.h"
#include "kernel/presets.h"
#include "kernel/queue.h"
#include "ui/graphics.h"
#include "ui/viewstate.h"

namespace maxhost {

// ---- the host

// Hands the host its front end; stop_host waits for the scheduler thread to end and takes the front end away. Patchers
// are closed before.
MAXHOST_EMBED void start_host(FrontEnd front_end);
MAXHOST_EMBED void stop_host();

// What plug-ins hold: blocks of the allocator, objects that they made or asked for; and all symbols, which stay for
// ever.
struct MemoryInUse {
    size_t blocks, objects, symbols;
};
MAXHOST_EMBED MemoryInUse memory_in_use();

// The n-th allocation by plug-ins from now on (1: the next) fails, once; 0 takes that back.
MAXHOST_EMBED void fail_nth_allocation(long n);

// The n-th allocation and all after it fail; fail_nth_allocation(0) takes that back.
MAXHOST_EMBED void fail_allocations_from(long n);

// How many allocations have failed since either of them was called.
MAXHOST_EMBED long failed_allocations();

// ---- dictionaries

MAXHOST_EMBED OwnedDictionary empty_dictionary();

// ---- patchers and their views

MAXHOST_EMBED t_object *new_patcher();

// Opens a patcher file: JSON, or the text form of before. A name without folders is looked up in the search path, any
// other from the current folder and then in the search path. The file's folder becomes the patcher's folder before the
// boxes are made. What is wrong in the file, and which classes are not known, goes to the console; those boxes are kept
// and do nothing. The patcher is not marked changed. Null with the reason, which does not name the file, when the file
// cannot be read or is no patcher.
MAXHOST_EMBED t_object *open_patcher(const std::string &file, std::string &reason);

// Saves a patcher as JSON, with everything that its file had and that was not edited as it was. A name without folders
// goes to the patcher's folder, any other is taken from the current one; the folder becomes the patcher's. The patcher
// is then marked unchanged. False with the reason when that fails: a file that was there is as it was.
MAXHOST_EMBED bool save_patcher(t_object *patcher, const std::string &file, std::string &reason);

// The full path of the file that a patcher was opened from, or saved to since; empty when there is none.
MAXHOST_EMBED std::string file_of_patcher(t_object *patcher);

// Whether that file is no longer what it was when the patcher was opened, or saved last: somebody has written to it,
// replaced it or taken it away. False for a patcher without a file. To tell one change from the next, compare stamp_of
// the file with the stamp that was taken when the user was asked.
MAXHOST_EMBED bool changed_on_disk(t_object *patcher);

MAXHOST_EMBED void free_patcher(t_object *patcher);
MAXHOST_EMBED bool is_dirty(t_object *patcher);
MAXHOST_EMBED void set_clean(t_object *patcher);

// A view is a patcher's window; its boxes are told of it. Closed at the latest with the patcher.
MAXHOST_EMBED t_object *open_patcher_view(t_object *patcher);
MAXHOST_EMBED void close_patcher_view(t_object *view);

// ---- boxes

MAXHOST_EMBED bool is_box_class(t_symbol *class_name);

// Whether the class has old argument lists, and turns them into what a box is made from ("stdargs").
MAXHOST_EMBED bool has_old_arguments(t_symbol *class_name);

// Has the class turn an old argument list into entries of the dictionary; a class without "stdargs" leaves it alone.
MAXHOST_EMBED void add_old_arguments(t_symbol *class_name, t_dictionary *dictionary, std::span<const t_atom> arguments);

// Makes a box from its dictionary and the arguments that are typed behind its class; null when the class makes none.
// "varname" in the dictionary is its scripting name.
MAXHOST_EMBED t_object *new_box(t_object *patcher, t_symbol *class_name, t_dictionary *dictionary,
                                std::span<const t_atom> arguments = {});

// Frees a box between two deliveries of the scheduler thread.
MAXHOST_EMBED void free_box(t_object *box);

// The box of that scripting name or else that id; null when there is none. "a::b" is the box b in the patcher in box a.
MAXHOST_EMBED t_object *box_named(t_object *patcher, t_symbol *name);

// The boxes of a patcher in order of creation, the class of one, and the patcher in one; null when none is in it. That
// patcher is the box's, not to be freed.
MAXHOST_EMBED std::vector<t_object *> boxes_in(t_object *patcher);
MAXHOST_EMBED t_symbol *class_of_box(t_object *box);
MAXHOST_EMBED t_object *patcher_in(t_object *box);

// What the plug-in asks of who shows a box: the flags of jbox_initclass and those of jbox_new (jpatcher_api.h).
struct BoxFlags {
    long of_class, of_box;
};
MAXHOST_EMBED BoxFlags flags_of_box(t_object *box);

MAXHOST_EMBED long inlets_of(t_object *box);
MAXHOST_EMBED long outlets_of(t_object *box);

// A patch cord from an outlet to an inlet, both counted from the left, behind the cords that leave the outlet; false
// when there is no such outlet or inlet.
MAXHOST_EMBED bool connect_boxes(t_object *from, long outlet, t_object *to, long inlet = 0);

// The attributes that are saved, and what the box adds in "jsave".
MAXHOST_EMBED OwnedDictionary saved_box(t_object *box);

// ---- messages

// Delivers a message: a symbol at the front is the selector, a lone number is "int" or "float", several atoms are
// "list". Any thread, if the caller sees to it that the box is not freed meanwhile.
MAXHOST_EMBED void send_message(t_object *box, std::span<const t_atom> atoms);

// The same on the scheduler thread; returns at once. wait_until_delivered returns when all have been.
MAXHOST_EMBED void send_on_scheduler(t_object *box, std::vector<t_atom> atoms);
MAXHOST_EMBED void wait_until_delivered();

// To whatever is bound to the symbol, if it is a box that is alive, and to the receivers of that name; false when that
// is nobody.
MAXHOST_EMBED bool send_to_receiver(t_symbol *receiver, std::span<const t_atom> atoms);

// ---- attributes

MAXHOST_EMBED bool has_attribute(t_object *box, t_symbol *name);

// Through the accessors, whose result is given; reading fills `values` on the result 0.
MAXHOST_EMBED t_max_err read_attribute(t_object *box, t_symbol *name, std::vector<t_atom> &values);
MAXHOST_EMBED t_max_err write_attribute(t_object *box, t_symbol *name, std::span<const t_atom> values);

// ---- what a person does and sees, in the data view of a box. Boxes without one answer false or nothing.

enum class Key { up, down, page_up, page_down, home, end };

MAXHOST_EMBED bool data_view_state(t_object *box, ViewState &state);
MAXHOST_EMBED bool click_row(t_object *box, long position);

// Moves the selection, which starts at the first row, and stays at the ends. A page is what fits into the box.
MAXHOST_EMBED bool press_key(t_object *box, Key key);

// Clicks the box itself; false for one that has no use for it.
MAXHOST_EMBED bool click_box(t_object *box);

// What the plug-in draws for the row at a position, in a patcher view or, without one, in one of its own. A `width` is
// that of the row where it is shown, which the right column fills as far as its greatest width lets it; 0 is the width
// that the column asks for.
MAXHOST_EMBED DrawList painted_row(t_object *box, long position, t_object *patcher_view = nullptr, long width = 0);

// The assistance text of an inlet or outlet; empty when the box tells none.
MAXHOST_EMBED std::string assistance(t_object *box, bool inlet, long index);

// ---- text editors, which plug-ins open; the front end hears what becomes of them

struct EditorState {
    std::string text; // UTF-8
    std::string file; // a bare name
    std::string path; // the full path of that file, empty without one
    std::string title;
    bool visible;
};

MAXHOST_EMBED EditorState editor_state(t_object *editor);

// A person changes the text and saves it; true when the owner of the editor has taken it, and has not refused it.
MAXHOST_EMBED bool save_editor_text(t_object *editor, const std::string &text);

// A person closes the window; the editor is freed.
MAXHOST_EMBED void close_editor_window(t_object *editor);

} // namespace maxhost
