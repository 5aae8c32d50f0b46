// The lock by which programs that edit one file wait for each other.
#include "documentlock.h"

#include <cerrno>
#include <iostream>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Network file systems lock only what may be written.
int open_to_lock(const char *file) {
    constexpr int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const int descriptor = open(file, O_RDWR | flags);
    return descriptor >= 0 ? descriptor : open(file, O_RDONLY | flags);
}

// Waits for the lock, and says so. Where there are none it is as good as got.
void lock(int descriptor, const std::string &file) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return;
    std::cerr << "waiting for " << file << ", which another vrk-xml edits\n";
    while (flock(descriptor, LOCK_EX) != 0 && errno == EINTR) {
    }
}

// Whether the path still leads to the open file, or to nothing any more.
bool is_current(int descriptor, const char *file) {
    struct stat locked, now;
    return fstat(descriptor, &locked) != 0 || stat(file, &now) != 0 ||
           (locked.st_dev == now.st_dev && locked.st_ino == now.st_ino);
}

} // namespace

DocumentLock::DocumentLock(const std::string &file) : descriptor_(open_to_lock(file.c_str())) {
    while (descriptor_ >= 0) {
        lock(descriptor_, file);
        if (is_current(descriptor_, file.c_str()))
            return;
        close(descriptor_);
        descriptor_ = open_to_lock(file.c_str());
    }
}

DocumentLock::~DocumentLock() {
    if (descriptor_ >= 0)
        close(descriptor_);
}
