// Files that are replaced as a whole or not at all.
#pragma once

#include <cstdio>

// Writes the content of a file, and closes it: the number of bytes, or -1 when not all of them were written.
using whole_file_writer = int (*)(std::FILE *file, void *what);

// Replaces the file at a native path (UTF-8) with what `write` writes, called with `what`; its result. -1 when the file
// cannot be written, is none that can be replaced (a folder, a pipe, a device), or memory runs out: then what was there
// is as it was. The content goes to a new file beside it, which takes its place, its permissions and its owner. A link
// stays a link. Main thread.
int vrk_replace_file(const char *native_path, whole_file_writer write, void *what);
