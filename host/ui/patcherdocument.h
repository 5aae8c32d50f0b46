// What a file said of a patcher and its boxes, kept so that saving writes it back.
#pragma once

#include <unordered_set>

#include "kernel/dictionary.h"
#include "ui/box.h"
#include "ui/json.h"
#include "ui/patcher.h"

namespace maxhost {

struct KeptBox {
    Json entry;                              // the object under "box", but for the patcher in the box
    DictionaryEntries attributes;            // the attributes as they were when it was read or saved last
    std::unordered_set<t_symbol *> own_keys; // that the class reads or writes by itself; "jsave" brings them back
    long element = -1;                       // its place in the list of boxes; -1: it is not in the file yet

    ~KeptBox() { dismantle(entry); }
};

// A member of the list of boxes or cords.
struct Element {
    Json json;         // as it was; of a box that was made without what is in KeptBox::entry
    bool made = false; // a box or cord came of it
};

struct PatcherDocument {
    Json file;    // around the patcher; null in a patcher that is in a box
    Json patcher; // where boxes and cords were stand empty lists
    std::vector<Element> boxes;
    std::vector<Element> lines;

    ~PatcherDocument();
};

// What a file says of a patcher without boxes.
Json new_description();

// What is kept of a box, with an empty entry when nothing is.
KeptBox &kept_box(t_jbox *box);

// The saved attributes of a box as they are now.
DictionaryEntries saved_attributes(t_object *box);

} // namespace maxhost
