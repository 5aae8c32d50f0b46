// Presets: the message that brings an object back to where it was.
#pragma once

#include "ext_mess.h"
#include "kernel/export.h"

namespace maxhost {

// Sends the object the message it last gave for its preset; false when it gave none.
MAXHOST_EMBED bool recall_preset(t_object *object);

} // namespace maxhost
