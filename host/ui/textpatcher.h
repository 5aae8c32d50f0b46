// The text form of patchers, from before there was JSON. It is read and never written.
#pragma once

#include <string>

#include "ui/patcher.h"

namespace maxhost {

// Whether a text begins as the text form does.
bool is_text_patcher(const std::string &text);

// Makes a patcher of the records; boxes get the ids "obj-1", "obj-2" … in their order. Messages to a symbol reach what
// is bound to it at that moment. Records and classes that are not known, and cords to nowhere, are told on the console,
// each kind once, and left out. A text that is not UTF-8 is taken for Mac Roman. Null with the reason when there is no
// patcher in the text, or patchers nested more than 128 deep.
Patcher *read_text_patcher(const std::string &text, const std::string &file_name, std::string &reason);

} // namespace maxhost
