// The console: lines of the host's own, against an object.
#pragma once

#include <string>

#include "ext_mess.h"

namespace maxhost {

void console_error(const t_object *object, const std::string &text);
void console_warning(const t_object *object, const std::string &text);

// A text cut to so many bytes at the most, not inside a UTF-8 sequence.
std::string cut(std::string text, size_t bytes);

// Against a name that no object has.
void console_error_about(const std::string &name, const std::string &text);

} // namespace maxhost
