// What a program shows of patchers and boxes, and what a person enters there. Main thread.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jgraphics.h"
#include "kernel/export.h"

namespace maxhost {

// What the file, or whoever made it, says of a patcher or a box under a key, as atoms; nothing when it says nothing, or
// what atoms cannot hold. Attributes that have changed since are read with read_attribute.
MAXHOST_EMBED std::vector<t_atom> described(t_object *patcher_or_box, const char *key);

// A cord between two boxes of a patcher.
struct ShownCord {
    t_object *from;
    long outlet;
    t_object *to;
    long inlet;
    bool hidden;
    std::vector<double> midpoints; // x and y of each, from the outlet to the inlet
};
MAXHOST_EMBED std::vector<ShownCord> cords_in(t_object *patcher);

// What a box shows: the text of a message box, comment or text field as one symbol, the number of a number box, 0 or 1
// of a toggle; nothing for any other.
MAXHOST_EMBED std::vector<t_atom> shown_value(t_object *box);

// A person enters a value: a number, or a text as one symbol. Without atoms: a person has come to the end of changing
// it. False for a box in which nothing can be entered.
MAXHOST_EMBED bool enter_value(t_object *box, std::span<const t_atom> value);

// The pixels of an image, as long as it lives: rows from the top, four bytes a pixel, alpha not multiplied in.
struct Pixels {
    const uint8_t *rgba;
    int width, height;
};
MAXHOST_EMBED Pixels pixels_of(const t_jsurface &image);

// The box that a patcher is in; null when it is in none.
MAXHOST_EMBED t_object *box_around(t_object *patcher);

} // namespace maxhost
