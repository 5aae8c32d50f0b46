// File operations that fail. The functions of the C library are defined here once more, before those of the library,
// and call those unless they are to fail.
#include "faults/files.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/types.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

namespace {

thread_local FileFault kind;
thread_local long until_failure = 0; // 0: nothing is to fail
thread_local std::size_t room = std::numeric_limits<std::size_t>::max();
thread_local bool failed = false;
thread_local int written = -1; // the descriptor that was written to last

thread_local char done[64]; // letters of operations, ended by a zero

void note(char operation) {
    const std::size_t length = std::strlen(done);
    if (length + 1 < sizeof done && (length == 0 || done[length - 1] != operation))
        done[length] = operation;
}

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
    const bool is_signal = kind == FileFault::killed || kind == FileFault::terminated;
    if ((kind != FileFault::error && !is_signal) || !is_next())
        return false;
    if (is_signal) {
        raise(kind == FileFault::killed ? SIGKILL : SIGTERM);
        return false;
    }
    errno = EIO;
    return true;
}

// What was written does not reach the disk.
void lose_content(int descriptor) {
    const long left = std::exchange(until_failure, 0); // this is not an operation of the program's
    [[maybe_unused]] const int result = descriptor == written ? ftruncate(descriptor, 0) : 0;
    until_failure = left;
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
    std::fill(std::begin(done), std::end(done), '\0');
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

const char *FailingFiles::order() { return done; }

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
    note('w');
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

int rename(const char *from, const char *to) noexcept {
    static auto *const real = next<int(const char *, const char *)>("rename");
    note('r');
    return fails() ? -1 : real(from, to);
}

int fsync(int descriptor) {
    static auto *const real = next<int(int)>("fsync");
    note('s');
    if (fails()) {
        lose_content(descriptor);
        return -1;
    }
    if (descriptor == written) // closing it cannot lose what is on the disk
        written = -1;
    return real(descriptor);
}

int ftruncate(int descriptor, off_t size) noexcept {
    static auto *const real = next<int(int, off_t)>("ftruncate");
    return fails() ? -1 : real(descriptor, size);
}

int flock(int descriptor, int operation) noexcept {
    static auto *const real = next<int(int, int)>("flock");
    return fails() ? -1 : real(descriptor, operation);
}

int fsetxattr(int descriptor, const char *name, const void *value, size_t size, int flags) noexcept {
    static auto *const real = next<int(int, const char *, const void *, size_t, int)>("fsetxattr");
    return fails() ? -1 : real(descriptor, name, value, size, flags);
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
