// Files that are read as a whole, or replaced as a whole or not at all. Paths are native ones in UTF-8.
#pragma once

#include <cstddef>

// Whether anything is at a native path; also when memory runs out before that can be told. Any thread.
bool vrk_file_exists(const char *native_path);

// The bytes of the file at a native path, in memory from malloc that the caller frees; *size becomes how many they are.
// Null when they cannot be had whole, are more than INT_MAX, or memory runs out; and for what is not a regular file (a
// folder, a pipe, a device): those are not waited for. Any thread.
char *vrk_read_file(const char *native_path, std::size_t *size);

// Makes the file at a native path, or puts other content in the place of the one that is there. 0, or minus the error
// number (errno.h) of what failed. Main thread.
//
// The content goes to a hidden file beside it, ".NAME.vrk-PROCESS-NUMBER", is forced to the disk and renamed, and the
// folder is forced to the disk: after a crash or a power cut the file is the old one or the new one, whole. It keeps
// its permissions, owner, group, extended attributes and access lists; a link stays a link, and one that leads nowhere
// has the file made that it names. Such hidden files whose writers have been killed are removed by the next call for
// the same file. Signals that end the program wait until the file is there.
//
// Where a rename would make another file of it (it has several names, another owner or mount, a folder in which nothing
// may be made), the file is written in place: first what is longer than before, so that a full disk is noticed while
// the old content is there. A pipe and a character device get the content as well: -EPIPE for a pipe that nobody reads,
// and -ETIMEDOUT when its reader takes nothing for some seconds. Anything else is refused.
//
// After a failure the file is as it was, unless writing in place broke off, or the folder could not be forced to the
// disk: then the new content is there, but may not outlast a power cut.
int vrk_replace_file(const char *native_path, const char *bytes, std::size_t size);

// Removes the file at a native path if it is empty. Main thread.
void vrk_remove_empty_file(const char *native_path);
