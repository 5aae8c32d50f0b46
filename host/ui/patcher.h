// Patchers, the boxes in them, and the views that show them.
#pragma once

#include <atomic>
#include <vector>

#include "jgraphics.h"
#include "jpatcher_api.h"
#include "kernel/classes.h"

namespace maxhost {

struct PatcherView;

struct Patcher : t_object {
    std::vector<t_jbox *> boxes;      // in order of creation
    std::vector<PatcherView *> views; // that are open
    long newest_id = 0;               // of "obj-N"
    std::atomic<bool> dirty{false};

    static Class *host_class();
    static constexpr const char *kind_name = "patcher";
};

struct PatcherView : t_object {
    Patcher *patcher = nullptr;
    t_jgraphics *context = nullptr; // while it is being painted

    static Class *host_class();
    static constexpr const char *kind_name = "patcher view";
};

// Makes a box of a class of the name space "box" in a patcher, from its dictionary, to which the declared defaults and
// an "id" are added. Null when there is no such class, or its constructor makes none.
t_object *make_box(Patcher &patcher, t_symbol *class_name, t_dictionary *dictionary);

// The box of that scripting name or id.
t_object *find_box(const Patcher &patcher, t_symbol *name);

// Opens and closes a view, and tells the boxes.
PatcherView *open_view(Patcher &patcher);
void close_view(PatcherView *view);

// Frees the views, the boxes and the patcher.
void close_patcher(Patcher *patcher);

} // namespace maxhost
