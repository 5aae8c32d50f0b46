// Files of bytes.
#include "bytes.h"

#include <cerrno>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "document.h"

namespace {

constexpr int patience = 2000; // milliseconds in which somebody has to begin to write to a pipe that has a name

// Waits until there is something to read, or nothing comes any more. False when the time, in milliseconds, is over.
bool wait_for_bytes(int descriptor, int time = -1) {
    pollfd bytes = {descriptor, POLLIN, 0};
    return poll(&bytes, 1, time) != 0;
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

// Whether a file is a pipe that whoever writes to it has to open first. One that the program was given is open: when
// it is empty, nothing was written to it.
bool is_named_pipe(int descriptor, std::string_view file) {
    const bool is_given = file.starts_with("/dev/fd/") || file.starts_with("/dev/std") || file.starts_with("/proc/");
    struct stat status;
    return !is_given && fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

} // namespace

std::string content_of(const std::string &file) {
    constexpr size_t enough = 10'000'000;
    const int descriptor = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const int failure = descriptor < 0 ? errno : 0;
    const bool is_silent = is_named_pipe(descriptor, file) && !wait_for_bytes(descriptor, patience);
    std::string bytes;
    const int error = failure ? failure : read_bytes(descriptor, enough, bytes);
    close(descriptor);
    if (error)
        throw Refused{"can't read " + file + ": " + std::generic_category().message(error)};
    if (is_silent && bytes.empty())
        throw Refused{"can't read " + file + ": nobody writes to the pipe"};
    return bytes;
}

void write_bytes(const std::string &file, std::span<const char> bytes) {
    std::string reason;
    if (!maxhost::replace_whole_file(file, {bytes.data(), bytes.size()}, reason))
        throw Refused{"unable to write " + file + " (" + reason + ")"};
}
