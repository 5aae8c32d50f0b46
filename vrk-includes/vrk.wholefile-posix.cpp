// Files that are read or replaced as a whole, on POSIX systems.
#include "vrk.wholefile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef __APPLE__
#include <copyfile.h>
#else
#include <sys/xattr.h>
#endif

// ---- reading

namespace {

struct file_closer {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

} // namespace

bool vrk_file_exists(const char *native_path) { return access(native_path, F_OK) == 0; }

char *vrk_read_file(const char *native_path, std::size_t *size) {
    struct stat status;
    if (stat(native_path, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > INT_MAX)
        return nullptr;
    *size = static_cast<std::size_t>(status.st_size);
    const std::unique_ptr<std::FILE, file_closer> file(std::fopen(native_path, "rb"));
    std::unique_ptr<char, void (*)(void *)> bytes(nullptr, std::free);
    if (file)
        bytes.reset(static_cast<char *>(std::malloc(*size + 1))); // an empty file has a block as well
    const bool is_whole = bytes && std::fread(bytes.get(), 1, *size, file.get()) == *size;
    return is_whole ? bytes.release() : nullptr;
}

// ---- writing. Functions that give an int give 0, or the error number of what failed.

namespace {

constexpr int patience = 5000; // milliseconds that the reader of a pipe may take nothing

class descriptor {
  public:
    explicit descriptor(int number = -1) : number_(number) {}
    ~descriptor() {
        if (number_ >= 0)
            close(number_);
    }
    descriptor(descriptor &&other) noexcept : number_(other.number_) { other.number_ = -1; }
    descriptor &operator=(descriptor &&other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    bool is_open() const { return number_ >= 0; }
    operator int() const { return number_; }

  private:
    int number_;
};

// Signals that wait until the scope ends, so that they do not end the program in the midst of a file. Those that a
// failing write sends are dropped: its result tells it.
class signals_held {
  public:
    explicit signals_held(std::initializer_list<int> numbers) {
        sigset_t held;
        sigemptyset(&held);
        for (const int number : numbers)
            sigaddset(&held, number);
        for (const int number : of_writes)
            sigaddset(&held, number);
        pthread_sigmask(SIG_BLOCK, &held, &before_);
    }
    ~signals_held() {
        for (const int number : of_writes)
            drop(number);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    signals_held(const signals_held &) = delete;
    signals_held &operator=(const signals_held &) = delete;

  private:
    static constexpr int of_writes[] = {SIGPIPE, SIGXFSZ};

    void drop(int number) const {
        sigset_t pending, one;
        sigemptyset(&one);
        sigaddset(&one, number);
        int taken = 0;
        if (!sigismember(&before_, number) && sigpending(&pending) == 0 && sigismember(&pending, number))
            sigwait(&one, &taken);
    }

    sigset_t before_;
};

// Where the content goes.
struct target {
    std::string path;        // without links, where it can be replaced
    struct stat status = {}; // when it exists
    bool exists = false;
    bool is_replaceable = true; // by another file that is renamed
};

// A new file beside another, which is removed again unless it was put in place. A lock on it tells that somebody is
// writing it; it ends with the program.
struct beside_file {
    std::string path; // empty once it is in place
    descriptor file;

    ~beside_file() {
        if (!path.empty())
            unlink(path.c_str());
    }
};

} // namespace

static std::string folder_of(const std::string &path) { return path.substr(0, path.rfind('/') + 1); }

// Follows the links that a path names, also to a file that is not there.
static int follow_links(std::string &path) {
    for (int links = 0; links < 40; ++links) {
        char to[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), to, sizeof to);
        if (length < 0)
            return errno == EINVAL || errno == ENOENT ? 0 : errno; // not a link, or nothing
        const std::string link(to, static_cast<size_t>(length));
        path = link.starts_with('/') ? link : folder_of(path) + link;
    }
    return ELOOP;
}

static bool is_same_file(const std::string &path, const struct stat &status) {
    struct stat found;
    return stat(path.c_str(), &found) == 0 && found.st_dev == status.st_dev && found.st_ino == status.st_ino;
}

// The descriptor that a path stands for, "/dev/stdout" for one; -1 for other paths. A file that is open there goes on
// where its writers are: a rename would leave them with the old one, and another descriptor would write over them.
static int descriptor_named(std::string_view path) {
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

static int find_target(const char *path, target &place) {
    place.path = path;
    place.exists = stat(path, &place.status) == 0;
    if (!place.exists)
        return errno == ENOENT ? follow_links(place.path) : errno;
    if (S_ISDIR(place.status.st_mode))
        return EISDIR;
    if (faccessat(AT_FDCWD, path, W_OK, AT_EACCESS) != 0)
        return errno;
    place.is_replaceable = S_ISREG(place.status.st_mode) && place.status.st_nlink == 1 &&
                           follow_links(place.path) == 0 && is_same_file(place.path, place.status);
    if (!place.is_replaceable)
        place.path = path;
    return 0;
}

// Waits for the reader of a pipe; a disk is never waited for.
static int wait_for_room(int file) {
    pollfd room = {file, POLLOUT, 0};
    return poll(&room, 1, patience) > 0 ? 0 : ETIMEDOUT;
}

static int write_bytes(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t now = write(file, bytes.data(), bytes.size());
        if (now >= 0)
            bytes.remove_prefix(static_cast<size_t>(now));
        else if (errno == EAGAIN ? wait_for_room(file) != 0 : errno != EINTR)
            return errno == EAGAIN ? ETIMEDOUT : errno;
    }
    return 0;
}

static int write_bytes_at(int file, std::string_view bytes, off_t place) {
    return lseek(file, place, SEEK_SET) < 0 ? errno : write_bytes(file, bytes);
}

// Not every file system can.
static int force_to_disk(int file) {
#ifdef F_FULLFSYNC
    if (fcntl(file, F_FULLFSYNC) == 0)
        return 0;
#endif
    return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
}

// Not every folder may be opened.
static int force_folder_to_disk(const std::string &folder) {
    const descriptor opened(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return opened.is_open() ? force_to_disk(opened) : 0;
}

// ---- in place

// A pipe or a device.
static int write_to_device(const target &place, std::string_view bytes) {
    if (!S_ISFIFO(place.status.st_mode) && !S_ISCHR(place.status.st_mode))
        return ENOTSUP;
    const descriptor file(open(place.path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.is_open())
        return errno == ENXIO ? EPIPE : errno; // nobody reads the pipe
    const signals_held hold({});
    return write_bytes(file, bytes);
}

// What is longer than before is written first, and taken away again when there is no room for it.
static int write_in_place(const target &place, std::string_view bytes) {
    const signals_held hold({SIGINT, SIGTERM, SIGHUP});
    const descriptor file(open(place.path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status;
    if (!file.is_open() || fstat(file, &status) != 0)
        return errno;
    const size_t before = static_cast<size_t>(status.st_size);
    const size_t kept = std::min(before, bytes.size());
    int error = write_bytes_at(file, bytes.substr(kept), status.st_size);
    if (!error && kept < bytes.size())
        error = force_to_disk(file);
    if (error)
        return ftruncate(file, status.st_size) == 0 ? error : errno;
    error = write_bytes_at(file, bytes.substr(0, kept), 0);
    if (!error && bytes.size() < before && ftruncate(file, static_cast<off_t>(bytes.size())) != 0)
        error = errno;
    return error ? error : force_to_disk(file);
}

// ---- beside

// What the names of files beside another begin with. Long names are cut, between characters.
static std::string stem_beside(const std::string &path) {
    constexpr size_t longest = 64; // bytes, so that the whole name is short enough for every file system
    std::string name = path.substr(path.rfind('/') + 1);
    size_t length = std::min(name.size(), longest);
    while (length < name.size() && length > 0 && (name[length] & 0xC0) == 0x80)
        --length;
    return "." + name.substr(0, length) + ".vrk-";
}

// The lock; true as well where the file system has none.
static bool lock(int file) { return flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

// Makes a file under a name that nobody has, and locks it. Somebody may have taken it for a stray before.
static int make_beside(const std::string &folder, const std::string &stem, mode_t mode, beside_file &beside) {
    for (int number = 0; number < 100; ++number) {
        std::string path = folder + stem + std::to_string(getpid()) + "-" + std::to_string(number);
        descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (!file.is_open() && errno != EEXIST)
            return errno;
        struct stat status;
        if (!file.is_open() || !lock(file) || fstat(file, &status) != 0 || status.st_nlink == 0)
            continue;
        beside.path = std::move(path); // a copy could find no memory, and leave the file behind
        beside.file = std::move(file);
        return 0;
    }
    return EEXIST;
}

// Whether a name is one that make_beside gives: the stem, the process, a number.
static bool is_beside_name(std::string_view name, std::string_view stem) {
    if (!name.starts_with(stem))
        return false;
    name.remove_prefix(stem.size());
    const size_t line = name.find('-');
    return line != name.npos && line > 0 && line + 1 < name.size() && name.find_first_not_of("0123456789") == line &&
           name.find_first_not_of("0123456789", line + 1) == name.npos;
}

// Removes a file that a writer has left behind: one that can be locked is nobody's any more. Its writer may have put it
// in place before it was locked, and made the next one under its name.
static void remove_if_left(const std::string &path) {
    descriptor file(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.is_open()) // it may have got the permissions of a file that is only read
        file = descriptor(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status;
    if (file.is_open() && flock(file, LOCK_EX | LOCK_NB) == 0 && fstat(file, &status) == 0 &&
        is_same_file(path, status))
        unlink(path.c_str());
}

static void remove_strays(const std::string &folder, const std::string &stem) {
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    while (const dirent *entry = entries ? readdir(entries.get()) : nullptr)
        if (is_beside_name(entry->d_name, stem))
            remove_if_left(folder + entry->d_name);
}

#ifdef __APPLE__

static int take_over_attributes(const std::string &from, const beside_file &to) {
    return copyfile(from.c_str(), to.path.c_str(), nullptr, COPYFILE_ACL | COPYFILE_XATTR) == 0 ? 0 : errno;
}

#else

constexpr char ACCESS_LIST[] = "system.posix_acl_access";

// Those of security modules and the kernel's own are not the user's to give.
static bool belongs_to_user(std::string_view attribute) {
    return attribute.starts_with("user.") || attribute.starts_with("system.");
}

static int copy_attribute(const std::string &from, const char *name, int to) {
    const ssize_t size = getxattr(from.c_str(), name, nullptr, 0);
    std::string value(static_cast<size_t>(std::max<ssize_t>(size, 0)), '\0');
    if (size < 0 || getxattr(from.c_str(), name, value.data(), value.size()) != size ||
        fsetxattr(to, name, value.data(), value.size(), 0) != 0)
        return belongs_to_user(name) ? errno : 0;
    return 0;
}

// The names of the extended attributes of a file, each ended by a zero.
static int list_attributes(const std::string &path, std::string &names) {
    const ssize_t size = listxattr(path.c_str(), nullptr, 0);
    names.resize(static_cast<size_t>(std::max<ssize_t>(size, 0)));
    if (size < 0 || listxattr(path.c_str(), names.data(), names.size()) != size)
        return errno == ENOTSUP ? 0 : errno;
    return 0;
}

static int take_over_attributes(const std::string &from, const beside_file &to) {
    fremovexattr(to.file, ACCESS_LIST); // that of the folder's new files, if it has one
    std::string names;
    int error = list_attributes(from, names);
    for (size_t at = 0; !error && at < names.size(); at += std::strlen(names.data() + at) + 1)
        if (std::strcmp(names.data() + at, "security.capability") != 0) // a write takes it away as well
            error = copy_attribute(from, names.data() + at, to.file);
    return error;
}

#endif

// Gives a new file what the one has whose place it takes.
static int take_over(const target &place, const beside_file &beside) {
    struct stat status;
    if (fstat(beside.file, &status) != 0)
        return errno;
    const bool is_same_owner = status.st_uid == place.status.st_uid && status.st_gid == place.status.st_gid;
    if (!is_same_owner && fchown(beside.file, place.status.st_uid, place.status.st_gid) != 0)
        return errno;
    return take_over_attributes(place.path, beside);
}

// Puts a file that is written in place.
static int put_in_place(const target &place, beside_file &beside) {
    if (place.exists && fchmod(beside.file, place.status.st_mode & 07777) != 0)
        return errno;
    if (const int error = force_to_disk(beside.file))
        return error;
    if (std::rename(beside.path.c_str(), place.path.c_str()) != 0)
        return errno;
    beside.path.clear();
    return 0;
}

static int replace_by_rename(const target &place, std::string_view bytes) {
    const signals_held hold({SIGINT, SIGTERM, SIGHUP});
    const std::string folder = folder_of(place.path), stem = stem_beside(place.path);
    remove_strays(folder, stem);
    beside_file beside;
    int error = make_beside(folder, stem, place.exists ? 0600 : 0666, beside);
    if (!error && place.exists)
        error = take_over(place, beside);
    if (!error)
        error = write_bytes(beside.file, bytes);
    if (!error)
        error = put_in_place(place, beside);
    return error ? error : force_folder_to_disk(folder);
}

// Whether nothing is wrong but that a file of another owner, mount or folder cannot be replaced by a new one, or has so
// long a path that none fits beside it.
static bool is_forbidden(int error) {
    static constexpr int errors[] = {EACCES, EPERM, EROFS, EBUSY, EXDEV, EINVAL, ENOTSUP, ENAMETOOLONG};
    return std::find(std::begin(errors), std::end(errors), error) != std::end(errors);
}

static int replace_file(const char *path, std::string_view bytes) {
    target place;
    if (const int error = find_target(path, place))
        return error;
    const bool is_file = place.exists && S_ISREG(place.status.st_mode);
    if (const int open = descriptor_named(path); is_file && open >= 0) {
        const signals_held hold({});
        return write_bytes(open, bytes);
    }
    if (place.exists && !is_file)
        return write_to_device(place, bytes);
    if (!place.is_replaceable)
        return write_in_place(place, bytes);
    const int error = replace_by_rename(place, bytes);
    return place.exists && is_forbidden(error) ? write_in_place(place, bytes) : error;
}

int vrk_replace_file(const char *native_path, const char *bytes, std::size_t size) {
    try {
        return -replace_file(native_path, {bytes, size});
    } catch (const std::exception &) { // no memory for a path
        return -ENOMEM;
    }
}

void vrk_remove_empty_file(const char *native_path) {
    struct stat status;
    if (stat(native_path, &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0)
        unlink(native_path);
}
