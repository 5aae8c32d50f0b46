// Named receivers: who hears what is sent to a name.
#pragma once

#include "kernel/message.h"

namespace maxhost {

// Has an object hear what is sent to the name; several may. Undone before the object is freed.
void add_receiver(t_symbol *name, t_object *object);
void remove_receiver(t_symbol *name, t_object *object);

// Delivers to the box that is bound to the symbol, if it is alive, and to everybody who listens to the name, on the
// calling thread. False when that is nobody.
bool deliver_to_name(t_symbol *name, const Message &message);

// The same; when it reaches nobody the console says so.
void deliver_to_name_or_tell(t_symbol *name, const Message &message);

} // namespace maxhost
