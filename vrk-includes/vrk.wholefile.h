// Files that are read as a whole, or replaced as a whole or not at all. Paths are native ones in UTF-8.
#pragma once

#include <cstddef>
#include <cstdio>

// Whether anything is at a native path; also when memory runs out before that can be told. Any thread.
bool vrk_file_exists(const char *native_path);

// The bytes of the file at a native path, in memory from malloc that the caller frees; *size becomes how many they are.
// Null when they cannot be had whole, are more than INT_MAX, or memory runs out; and for what is no regular file (a
// folder, a pipe, a device): those are not waited for. Any thread.
char *vrk_read_file(const char *native_path, std::size_t *size);

// Writes the content of a file, and closes it: the number of bytes, or -1 when not all of them were written.
using whole_file_writer = int (*)(std::FILE *file, void *what);

// Replaces the file at a native path with what `write` writes, called with `what`; its result. -1 when the file
// cannot be written, is none that can be replaced (a folder, a pipe, a device), or memory runs out: then what was there
// is as it was. The content goes to a new file beside it, which takes its place, its permissions and its owner. A link
// stays a link. Main thread.
int vrk_replace_file(const char *native_path, whole_file_writer write, void *what);
