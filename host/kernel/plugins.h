// Plug-ins: modules that are loaded and register their classes.
#pragma once

#include <string>

#include "kernel/export.h"

namespace maxhost {

// Loads a module and calls its entry function, `ext_main` or, when it has none, `main`; a module that is loaded already
// is not entered again. False with a reason when it cannot be loaded. Main thread.
MAXHOST_EMBED bool load_plugin(const std::string &file, std::string &reason);

} // namespace maxhost
