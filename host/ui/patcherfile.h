// Patcher files: their text as patchers, and patchers as their text.
#pragma once

#include <string>

#include "ui/patcher.h"

namespace maxhost {

// Makes a patcher of the text of a file: JSON, or the text form of before. `file_name` stands in what is told on the
// console. When everything is there the boxes hear "loadbang", those in inner patchers first. Null with the place and
// the reason when the text is no patcher. The patcher that is made is not marked changed.
Patcher *read_patcher(const std::string &text, const std::string &file_name, std::string &reason);

// The text of a file for a patcher, always JSON. A text in it that is not UTF-8 gets replacement characters, and the
// console says so.
std::string patcher_text(Patcher &patcher);

} // namespace maxhost
