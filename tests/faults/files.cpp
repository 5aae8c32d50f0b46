// File operations that fail. The functions of the C library are defined here once more, before those of the library,
// and call those unless they are to fail.
#include "faults/files.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <limits>

namespace {

thread_local FileFault kind;
thread_local long until_failure = 0; // 0: nothing is to fail
thread_local std::size_t room = std::numeric_limits<std::size_t>::max();
thread_local bool failed = false;
thread_local int written = -1; // the descriptor that was written to last

template <typename Function> Function *next(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

bool is_next() {
    const bool now = until_failure > 0 && --until_failure == 0;
    failed |= now;
    return now;
}

// Counts an operation; true, with errno set, when it is to fail.
bool fails() {
    if (kind != FileFault::error || !is_next())
        return false;
    errno = EIO;
    return true;
}

// What was written does not reach the disk.
void lose_content(int descriptor) {
    [[maybe_unused]] const int result = descriptor == written ? ftruncate(descriptor, 0) : 0;
}

// How much of so many bytes finds room on the disk.
std::size_t taken(std::size_t size) {
    const std::size_t some = std::min(size, room);
    if (room != std::numeric_limits<std::size_t>::max())
        room -= some;
    failed |= some < size;
    return some;
}

} // namespace

FailingFiles::FailingFiles(FileFault fault, long n) {
    failed = false;
    kind = fault;
    until_failure = n;
}

FailingFiles::FailingFiles(std::size_t bytes) {
    failed = false;
    room = bytes;
}

FailingFiles::~FailingFiles() {
    until_failure = 0;
    room = std::numeric_limits<std::size_t>::max();
}

bool FailingFiles::has_failed() { return failed; }

// NOLINTBEGIN(*-reserved-identifier): the C library's own functions
#pragma GCC visibility push(default)
extern "C" {

int open(const char *path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = static_cast<mode_t>(va_arg(rest, int));
    va_end(rest);
    static auto *const real = next<int(const char *, int, ...)>("open");
    return fails() ? -1 : real(path, flags, mode);
}

int open64(const char *path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = static_cast<mode_t>(va_arg(rest, int));
    va_end(rest);
    return open(path, flags, mode);
}

ssize_t read(int descriptor, void *to, size_t size) {
    static auto *const real = next<ssize_t(int, void *, size_t)>("read");
    if (kind == FileFault::error)
        return fails() ? -1 : real(descriptor, to, size);
    if (!is_next())
        return real(descriptor, to, size);
    return kind == FileFault::end_of_file ? 0 : real(descriptor, to, std::min(size, size_t{1}));
}

ssize_t write(int descriptor, const void *from, size_t size) {
    static auto *const real = next<ssize_t(int, const void *, size_t)>("write");
    if (fails())
        return -1;
    written = descriptor;
    const size_t some = taken(size);
    if (some == 0 && size > 0)
        return errno = ENOSPC, -1;
    return real(descriptor, from, some);
}

int close(int descriptor) {
    static auto *const real = next<int(int)>("close");
    if (!fails())
        return real(descriptor);
    lose_content(descriptor);
    real(descriptor);
    return errno = EIO, -1;
}

int mkstemp(char *name) {
    static auto *const real = next<int(char *)>("mkstemp");
    written = -1;
    return fails() ? -1 : real(name);
}

int mkostemp(char *name, int flags) {
    static auto *const real = next<int(char *, int)>("mkostemp");
    return fails() ? -1 : real(name, flags);
}

int rename(const char *from, const char *to) noexcept {
    static auto *const real = next<int(const char *, const char *)>("rename");
    return fails() ? -1 : real(from, to);
}

int fsync(int descriptor) {
    static auto *const real = next<int(int)>("fsync");
    if (!fails())
        return real(descriptor);
    lose_content(descriptor);
    return errno = EIO, -1;
}

int chmod(const char *path, mode_t mode) noexcept {
    static auto *const real = next<int(const char *, mode_t)>("chmod");
    return fails() ? -1 : real(path, mode);
}

int fchmod(int descriptor, mode_t mode) noexcept {
    static auto *const real = next<int(int, mode_t)>("fchmod");
    return fails() ? -1 : real(descriptor, mode);
}

FILE *fopen(const char *path, const char *mode) {
    static auto *const real = next<FILE *(const char *, const char *)>("fopen");
    written = -1;
    return fails() ? nullptr : real(path, mode);
}

// It gives less only where a file ends or fails.
size_t fread(void *to, size_t size, size_t count, FILE *file) {
    static auto *const real = next<size_t(void *, size_t, size_t, FILE *)>("fread");
    const bool ends = kind == FileFault::end_of_file && is_next();
    return real(to, size, ends || fails() ? count / 2 : count, file);
}

size_t fwrite(const void *from, size_t size, size_t count, FILE *file) {
    static auto *const real = next<size_t(const void *, size_t, size_t, FILE *)>("fwrite");
    const size_t bytes = size * count;
    written = fileno(file);
    return real(from, 1, fails() ? bytes / 2 : taken(bytes), file) / std::max(size, size_t{1});
}

int fclose(FILE *file) {
    static auto *const real = next<int(FILE *)>("fclose");
    if (!fails())
        return real(file);
    std::fflush(file);
    lose_content(fileno(file));
    real(file);
    return errno = EIO, EOF;
}

} // extern "C"
#pragma GCC visibility pop
// NOLINTEND(*-reserved-identifier)
