// The box part of an instance: rectangle, font, name, and the data views in it.
#pragma once

#include <vector>

#include "jpatcher_api.h"

namespace maxhost {

struct DataView;

// What the host keeps for a box, behind t_jbox.obex.
struct BoxState {
    t_symbol *font_name;
    double font_size;
    std::vector<DataView *> views; // whose client the box is
};

// The state of a living box; null for anything else.
BoxState *box_state(const void *box);

} // namespace maxhost
