// The modules' console, on a terminal.
#pragma once

#include "embed/host.h"

// A front end that shows posts on standard output, and warnings and errors on standard error.
maxhost::FrontEnd terminal_console();

// How many warnings and errors there have been.
long complaints();
