// File operations that fail: open, create, read, write, close, rename and their kind, of everything in the process.
#pragma once

#include <cstddef>

// What becomes of the n-th operation (1: the next) on a file. error: it fails (EIO), a writing one in its midst; one
// that closes or flushes loses what was written. short_read: of the reading ones alone, it gives a single byte.
// end_of_file: it gives nothing, as if the file had been cut off. killed, terminated: the thread gets SIGKILL or
// SIGTERM before it.
enum class FileFault { error, short_read, end_of_file, killed, terminated };

// Has operations of the calling thread fail until the scope ends. One at a time.
class FailingFiles {
  public:
    FailingFiles(FileFault fault, long n);
    // The disk has room for so many bytes more.
    explicit FailingFiles(std::size_t room);
    ~FailingFiles();
    FailingFiles(const FailingFiles &) = delete;
    FailingFiles &operator=(const FailingFiles &) = delete;

    static bool has_failed();

    // What has been done since the last scope began: "w" for writing, "s" for syncing, "r" for renaming, one letter for
    // several in a row.
    static const char *order();
};
