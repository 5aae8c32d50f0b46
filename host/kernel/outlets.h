// Outlets, the patch cords that leave them, and the inlets that the cords lead to.
#pragma once

#include <span>
#include <vector>

#include "ext_proto.h"

namespace maxhost {

struct Cord {
    t_object *receiver;
    long inlet;     // counted from the left
    long line = -1; // its place among the cords of the patcher's file; -1: it is in none
};

struct Outlet {
    t_object *owner;
    t_symbol *message; // the only message it sends, or null for any; others are refused with a line on the console
    long created;      // how many outlets the owner had before; they come from right to left
    std::vector<Cord> cords;
};

// The outlet of a living object, counted from the left; null when it has no such outlet.
Outlet *outlet_of(t_object *owner, long from_left);
long outlet_count(t_object *owner);

// An object has one inlet until it asks for another number of them.
long inlet_count(const t_object *object);
void set_inlet_count(t_object *object, long count);

// Sends a message through an outlet, as outlet_anything does. One of more than `most_atoms` is refused like one that
// goes round in a circle: the console says so, and nothing more is sent until the event is over.
void *send_through(t_outlet *outlet, t_symbol *selector, std::span<const t_atom> arguments);

// Says on the console, against an object, why an event goes too far, once: within a message from an outlet nothing more
// is sent until the event is over.
void end_event(const t_object *object, const char *reason);

// How many events have been ended so on this thread.
long ended_events();

// Delivers a message to an inlet of an object, counted from the left, as a cord does: what comes to the first inlet of
// a box reaches its b_firstin. When that is not alive, the console says so.
void deliver_to_inlet(t_object *object, long inlet, t_symbol *selector, std::span<const t_atom> arguments);

// Adds a cord; takes out all cords that leave an object or lead to it.
void connect(Outlet &outlet, const Cord &cord);
void cut_cords(t_object *object);

// Forgets the cords at this end only: for a group of objects that are joined with each other alone, all of which go.
void forget_cords(t_object *object);

} // namespace maxhost
