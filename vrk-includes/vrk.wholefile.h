// Files that are replaced as a whole or not at all.
#pragma once

#include <string_view>

// Makes `text` the content of the file at a native path (UTF-8). False when the file cannot be written, is none that
// can be replaced (a folder, a pipe, a device), or memory runs out: then what was there is as it was. The text is
// written to a new file beside it, which takes its place, its permissions and its owner. A link stays a link. Main
// thread.
bool vrk_replace_file(const char *native_path, std::string_view text);
