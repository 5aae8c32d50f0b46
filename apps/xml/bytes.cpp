// Files of bytes.
#include "bytes.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "document.h"

namespace {

// Waits until there is something to read, or nothing comes any more.
void wait_for_bytes(int descriptor) {
    pollfd bytes = {descriptor, POLLIN, 0};
    poll(&bytes, 1, -1);
}

// Reads until the file ends, or enough is there. 0, or the error number of what failed.
int read_bytes(int descriptor, size_t enough, std::string &bytes) {
    char piece[4096];
    while (bytes.size() < enough) {
        const ssize_t now = read(descriptor, piece, sizeof piece);
        if (now == 0)
            return 0;
        if (now > 0)
            bytes.append(piece, static_cast<size_t>(now));
        else if (errno == EAGAIN)
            wait_for_bytes(descriptor);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

bool is_pipe(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

} // namespace

std::string content_of(const std::string &file) {
    constexpr size_t enough = 10'000'000;
    const int descriptor = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    std::string bytes;
    const int error = descriptor < 0 ? errno : read_bytes(descriptor, enough, bytes);
    const bool is_silent = !error && bytes.empty() && is_pipe(descriptor);
    close(descriptor);
    if (is_silent)
        throw Refused{"can't read " + file + ": nobody writes to the pipe"};
    if (error)
        throw Refused{"can't read " + file + ": " + std::generic_category().message(error)};
    return bytes;
}

void write_bytes(const std::string &file, std::span<const char> bytes) {
    std::string reason;
    if (!maxhost::replace_whole_file(file, {bytes.data(), bytes.size()}, reason))
        throw Refused{"unable to write " + file + " (" + reason + ")"};
}
