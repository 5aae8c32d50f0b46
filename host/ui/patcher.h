// Patchers, the boxes in them, and the views that show them.
#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "files/filestamp.h"
#include "jgraphics.h"
#include "jpatcher_api.h"
#include "kernel/classes.h"

namespace maxhost {

struct PatcherView;

struct PatcherDocument;

struct DocumentReleaser {
    void operator()(PatcherDocument *document) const;
};

using BoxesByName = std::unordered_map<t_symbol *, std::vector<t_jbox *>>;

struct Patcher : t_object {
    std::list<t_jbox *> boxes; // in order of creation
    BoxesByName by_name;       // scripting names
    BoxesByName by_id;
    std::vector<PatcherView *> views;                            // that are open
    const t_dictionary *box_dictionary = nullptr;                // of the box that is being made
    t_jbox *owner = nullptr;                                     // the box that this patcher is in
    long newest_id = 0;                                          // of "obj-N"
    std::atomic<bool> dirty{false};                              // of a patcher that is in no box
    std::string file;                                            // full path; empty until it is opened or saved
    FileStamp file_stamp;                                        // of that file when it was opened or saved last
    std::unique_ptr<PatcherDocument, DocumentReleaser> document; // what a file said of the patcher

    static Class *host_class();
    static constexpr const char *kind_name = "patcher";
};

struct PatcherView : t_object {
    Patcher *patcher = nullptr;
    t_jgraphics *context = nullptr; // while it is being painted

    static Class *host_class();
    static constexpr const char *kind_name = "patcher view";
};

// Makes a box in a patcher, from its dictionary, to which the declared defaults are added. The constructor is called
// with the dictionary and, after it, the arguments; that of a class which takes no dictionary with the arguments alone.
// Name, id, rectangle and font come from the dictionary for every class. Null when it makes none.
t_object *make_box(Patcher &patcher, const Class &cls, t_dictionary *dictionary, std::span<const t_atom> arguments);

// Why a box that is made from a dictionary will not have the id that this asks for; empty when nothing is in the way.
std::string complaint_about_id(const Patcher &patcher, const t_dictionary *dictionary);

// The box of that scripting name or, when there is none, that id. "a::b" is the box b in the patcher that is in box a.
t_object *find_box(const Patcher &patcher, t_symbol *name);

// Puts a box among those of a patcher, under its name and id, and takes it out. A box without an id, or with one that
// another box has, gets a new one.
std::list<t_jbox *>::iterator enter_box(Patcher &patcher, t_jbox *box);
void leave_patcher(Patcher &patcher, t_jbox *box, std::list<t_jbox *>::iterator place);

// Tells the front end that boxes or cords have come or gone, or the mark of being changed has. Any thread.
void tell_of_change(Patcher &patcher);

// The patcher that is in no box, around this one.
Patcher &outermost(Patcher &patcher);

// Opens and closes a view, and tells the boxes.
PatcherView *open_view(Patcher &patcher);
void close_view(PatcherView *view);

// Frees the views, the boxes and the patcher.
void close_patcher(Patcher *patcher);

} // namespace maxhost
