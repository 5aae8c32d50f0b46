// Whole files.
#include "files/wholefile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>

#include "files/besidefile.h"
#include "files/descriptor.h"
#include "files/heldsignals.h"

namespace fs = std::filesystem;

namespace maxhost {
namespace {

constexpr int patience = 5000; // milliseconds that the reader of a pipe may take nothing
constexpr int most_links = 40;

std::string error_text(int error) { return std::generic_category().message(error); }

bool read_fully(int descriptor, std::string &content) {
    char piece[65536];
    ssize_t now = 0;
    while ((now = read(descriptor, piece, sizeof piece)) != 0) {
        if (now < 0 && errno != EINTR)
            return false;
        content.append(piece, now < 0 ? 0 : static_cast<size_t>(now));
    }
    return true;
}

// ---- writing: functions that give an int give 0, or the error number of what failed

// Where the content goes.
struct Target {
    fs::path path;           // without links, where it can be replaced
    struct stat status = {}; // when it exists
    bool exists = false;
    bool is_replaceable = true; // by another file that is renamed
};

// Follows the links that a path names, also to a file that is not there.
int follow_links(fs::path &path) {
    std::error_code error;
    for (int links = 0; links < most_links; ++links) {
        if (!fs::is_symlink(fs::symlink_status(path, error)))
            return 0;
        path = path.parent_path() / fs::read_symlink(path, error);
        if (error)
            return error.value();
    }
    return ELOOP;
}

bool is_same_file(const fs::path &path, const struct stat &status) {
    struct stat found;
    return stat(path.c_str(), &found) == 0 && found.st_dev == status.st_dev && found.st_ino == status.st_ino;
}

// The descriptor that a path stands for, "/dev/stdout" for one; -1 for other paths. A file that is open there goes on
// where its writers are: a rename would leave them with the old one, and another descriptor would write over them.
int descriptor_named(std::string_view path) {
    if (path == "/dev/stdout")
        return STDOUT_FILENO;
    if (path == "/dev/stderr")
        return STDERR_FILENO;
    for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
        int number = -1;
        const char *end = path.data() + path.size();
        if (path.starts_with(folder) && std::from_chars(path.data() + folder.size(), end, number).ptr == end)
            return number;
    }
    return -1;
}

int find_target(const std::string &path, Target &target) {
    target.path = path;
    target.exists = stat(path.c_str(), &target.status) == 0;
    if (!target.exists)
        return errno == ENOENT ? follow_links(target.path) : errno;
    if (S_ISDIR(target.status.st_mode))
        return EISDIR;
    if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
        return errno;
    target.is_replaceable = S_ISREG(target.status.st_mode) && target.status.st_nlink == 1 &&
                            follow_links(target.path) == 0 && is_same_file(target.path, target.status);
    if (!target.is_replaceable)
        target.path = path;
    return 0;
}

// Waits for the reader of a pipe; a disk is never waited for.
bool has_room(int descriptor) {
    pollfd room = {descriptor, POLLOUT, 0};
    return poll(&room, 1, patience) > 0;
}

int write_fully(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t now = write(descriptor, content.data(), content.size());
        if (now >= 0)
            content.remove_prefix(static_cast<size_t>(now));
        else if (errno == EAGAIN && !has_room(descriptor))
            return ETIMEDOUT;
        else if (errno != EAGAIN && errno != EINTR)
            return errno;
    }
    return 0;
}

int write_at(int descriptor, off_t place, std::string_view content) {
    return lseek(descriptor, place, SEEK_SET) < 0 ? errno : write_fully(descriptor, content);
}

// Not every file system can.
int force_to_disk(int descriptor) {
#ifdef F_FULLFSYNC
    if (fcntl(descriptor, F_FULLFSYNC) == 0)
        return 0;
#endif
    return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
}

// Not every folder may be opened.
int force_folder_to_disk(const std::string &folder) {
    const Descriptor opened(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return opened.is_open() ? force_to_disk(opened) : 0;
}

// A pipe or a device.
int write_to_device(const Target &target, const std::string &content) {
    if (!S_ISFIFO(target.status.st_mode) && !S_ISCHR(target.status.st_mode))
        return ENOTSUP;
    const Descriptor file(open(target.path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.is_open())
        return errno == ENXIO ? EPIPE : errno; // nobody reads the pipe
    const HeldSignals hold({});
    return write_fully(file, content);
}

// What is longer than before is written first, and taken away again when there is no room for it.
int write_in_place(const Target &target, std::string_view content, FileStamp &stamp) {
    const HeldSignals hold({SIGINT, SIGTERM, SIGHUP});
    const Descriptor file(open(target.path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status;
    if (!file.is_open() || fstat(file, &status) != 0)
        return errno;
    const size_t before = static_cast<size_t>(status.st_size);
    const size_t kept = std::min(before, content.size());
    int error = write_at(file, status.st_size, content.substr(kept));
    if (!error && kept < content.size())
        error = force_to_disk(file);
    if (error)
        return ftruncate(file, status.st_size) == 0 ? error : errno;
    error = write_at(file, 0, content.substr(0, kept));
    if (!error && content.size() < before && ftruncate(file, static_cast<off_t>(content.size())) != 0)
        error = errno;
    if (!error)
        error = force_to_disk(file);
    stamp = stamp_of(file);
    return error;
}

int replace_by_rename(const Target &target, const std::string &content, FileStamp &stamp) {
    const HeldSignals hold({SIGINT, SIGTERM, SIGHUP});
    BesideFile beside(target.path.string());
    beside.remove_strays();
    int error = beside.make(target.exists ? 0600 : 0666);
    if (!error && target.exists)
        error = beside.take_over();
    if (!error)
        error = write_fully(beside.descriptor(), content);
    if (!error && target.exists && fchmod(beside.descriptor(), target.status.st_mode & 07777) != 0)
        error = errno;
    if (!error)
        error = force_to_disk(beside.descriptor());
    stamp = stamp_of(beside.descriptor());
    if (!error)
        error = beside.put_in_place();
    return error ? error : force_folder_to_disk(beside.folder());
}

// Whether nothing is wrong but that a file of another owner, mount or folder cannot be replaced by a new one, or has so
// long a path that none fits beside it.
bool is_forbidden(int error) {
    static constexpr int errors[] = {EACCES, EPERM, EROFS, EBUSY, EXDEV, EINVAL, ENOTSUP, ENAMETOOLONG};
    return std::find(std::begin(errors), std::end(errors), error) != std::end(errors);
}

int replace_file(const std::string &path, const std::string &content, FileStamp &stamp) {
    Target target;
    if (const int error = find_target(path, target))
        return error;
    const bool is_file = target.exists && S_ISREG(target.status.st_mode);
    if (const int open = descriptor_named(path); is_file && open >= 0) {
        const HeldSignals hold({});
        return write_fully(open, content);
    }
    if (target.exists && !is_file)
        return write_to_device(target, content);
    if (!target.is_replaceable)
        return write_in_place(target, content, stamp);
    const int error = replace_by_rename(target, content, stamp);
    return target.exists && is_forbidden(error) ? write_in_place(target, content, stamp) : error;
}

} // namespace

bool read_whole_file(const std::string &path, std::string &content, std::string &reason) {
    content.clear();
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)); // a pipe is not waited for
    struct stat status;
    if (!file.is_open() || fstat(file, &status) != 0) {
        reason = error_text(errno);
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        reason = "not a regular file";
        return false;
    }
    if (read_fully(file, content))
        return true;
    reason = error_text(errno);
    return false;
}

bool replace_whole_file(const std::string &path, const std::string &content, std::string &reason, FileStamp *written) {
    FileStamp stamp;
    if (const int error = replace_file(path, content, stamp)) {
        reason = error_text(error);
        return false;
    }
    if (written)
        *written = stamp;
    return true;
}

} // namespace maxhost
