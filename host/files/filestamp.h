// What a file looks like at one moment, by which it can be told later whether it is still the same.
#pragma once

#include <cstdint>
#include <string>

#include "kernel/export.h"

namespace maxhost {

// Two stamps are equal when nothing suggests that the file has changed between them: the path led to the same file, of
// the same size and time of modification, or to none at all. What replaces a file by another makes a difference, as
// does what writes to it, and what takes it away.
struct FileStamp {
    bool exists = false;
    uint64_t device = 0;
    uint64_t number = 0; // of the file on its device
    uint64_t size = 0;
    int64_t seconds = 0; // of the last modification
    int64_t nanoseconds = 0;

    bool operator==(const FileStamp &) const = default;
};

// The stamp of the file that a path leads to, through symbolic links; that of no file when there is none, or when it
// cannot be looked at. Taken before a file is read, it also tells of changes while the file was being read. Any thread.
MAXHOST_EMBED FileStamp stamp_of(const std::string &path);

// The stamp of an open file.
FileStamp stamp_of(int descriptor);

} // namespace maxhost
