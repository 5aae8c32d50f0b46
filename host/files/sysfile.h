// Open files, counted.
#pragma once

#include <cstddef>

#include "kernel/export.h"

namespace maxhost {

// How many files plug-ins have open.
MAXHOST_EMBED size_t files_open();

} // namespace maxhost
