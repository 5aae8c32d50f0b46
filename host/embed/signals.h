// Signals that end a program.
#pragma once

#include "kernel/export.h"

namespace maxhost {

// From now on SIGINT, SIGTERM and SIGHUP end the program on the calling thread, whichever thread gets them. That thread
// is to be the main one, which writes all files and holds these signals back while it does so: a file is not left half
// written, nor a hidden one beside it. Signals that are ignored stay ignored. Call it once, before other threads begin.
MAXHOST_EMBED void take_signals_here();

} // namespace maxhost
