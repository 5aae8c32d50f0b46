// The console: lines of the host's own, against an object.
#pragma once

#include <string>

#include "ext_mess.h"

namespace maxhost {

void console_error(const t_object *object, const std::string &text);

} // namespace maxhost
