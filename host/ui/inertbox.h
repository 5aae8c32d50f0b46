// The inert box: it stands for a box whose class the host does not know, has that box's inlets and outlets, and does
// nothing.
#pragma once

#include "kernel/classes.h"

namespace maxhost {

// Its boxes have the numbers of inlets and outlets that their dictionaries name, up to 1024 of each.
const Class &inert_class();

} // namespace maxhost
