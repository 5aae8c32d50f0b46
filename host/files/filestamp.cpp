// What a file looks like at one moment.
#include "files/filestamp.h"

#include <sys/stat.h>

namespace maxhost {
namespace {

FileStamp stamp_from(const struct stat &status) {
#ifdef __APPLE__
    const timespec &modified = status.st_mtimespec;
#else
    const timespec &modified = status.st_mtim;
#endif
    return {.exists = true,
            .device = static_cast<uint64_t>(status.st_dev),
            .number = static_cast<uint64_t>(status.st_ino),
            .size = static_cast<uint64_t>(status.st_size),
            .seconds = modified.tv_sec,
            .nanoseconds = modified.tv_nsec};
}

} // namespace

FileStamp stamp_of(const std::string &path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? stamp_from(status) : FileStamp{};
}

FileStamp stamp_of(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 ? stamp_from(status) : FileStamp{};
}

} // namespace maxhost
