// Outlets and the patch cords that leave them.
#pragma once

#include <vector>

#include "ext_proto.h"

namespace maxhost {

struct Outlet {
    t_object *owner;
    t_symbol *message; // the only message it sends, or null for any
    std::vector<t_object *> receivers;
};

// The outlet of a living object, counted from the left; null when it has no such outlet.
Outlet *outlet_of(t_object *owner, long from_left);
long outlet_count(t_object *owner);

// Adds a cord; takes out all cords that lead to an object.
void connect(Outlet &outlet, t_object *receiver);
void disconnect(t_object *owner, t_object *receiver);

} // namespace maxhost
