// The hidden file beside another.
#include "files/besidefile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#ifdef __APPLE__
#include <copyfile.h>
#else
#include <sys/xattr.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>

namespace maxhost {
namespace {

constexpr size_t longest_part = 64; // bytes of the other's name, so that no file system finds this one's too long
constexpr int attempts = 100;

// What the names of files beside another begin with. A long name is cut between characters.
std::string stem_beside(std::string_view name) {
    size_t length = std::min(name.size(), longest_part);
    while (length < name.size() && length > 0 && (name[length] & 0xC0) == 0x80)
        --length;
    return "." + std::string(name.substr(0, length)) + ".vrk-";
}

// Whether the rest of a name is PROCESS-NUMBER.
bool is_process_and_number(std::string_view rest) {
    constexpr const char *digits = "0123456789";
    const size_t line = rest.find_first_not_of(digits);
    return line != rest.npos && line > 0 && rest[line] == '-' && line + 1 < rest.size() &&
           rest.find_first_not_of(digits, line + 1) == rest.npos;
}

// Locks a file that is being made; true as well where the file system has no locks. False when somebody has taken it
// for a stray meanwhile.
bool claim(int file) {
    struct stat status;
    return (flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) && fstat(file, &status) == 0 &&
           status.st_nlink > 0;
}

// A writer may have put its file in place before it was locked, and made the next one under the same name.
bool is_still_there(int file, const std::string &path) {
    struct stat opened, named;
    return fstat(file, &opened) == 0 && lstat(path.c_str(), &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino;
}

void remove_if_left(const std::string &path) {
    constexpr int careful = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    Descriptor file(open(path.c_str(), O_RDWR | careful));
    if (!file.is_open()) // it may have got the permissions of a file that is only read
        file = Descriptor(open(path.c_str(), O_RDONLY | careful));
    if (file.is_open() && flock(file, LOCK_EX | LOCK_NB) == 0 && is_still_there(file, path))
        unlink(path.c_str());
}

#ifdef __APPLE__

int copy_attributes(const std::string &from, const std::string &to, int) {
    return copyfile(from.c_str(), to.c_str(), nullptr, COPYFILE_ACL | COPYFILE_XATTR) == 0 ? 0 : errno;
}

#else

// Those of the system's security modules are not everybody's to give.
bool belongs_to_user(const std::string &attribute) {
    return attribute.starts_with("user.") || attribute.starts_with("system.");
}

int copy_attribute(const std::string &from, const std::string &attribute, int to) {
    const ssize_t size = getxattr(from.c_str(), attribute.c_str(), nullptr, 0);
    std::string value(static_cast<size_t>(std::max<ssize_t>(size, 0)), '\0');
    const bool is_copied = size >= 0 && getxattr(from.c_str(), attribute.c_str(), value.data(), value.size()) == size &&
                           fsetxattr(to, attribute.c_str(), value.data(), value.size(), 0) == 0;
    return is_copied || !belongs_to_user(attribute) ? 0 : errno;
}

int copy_attributes(const std::string &from, const std::string &, int to) {
    fremovexattr(to, "system.posix_acl_access"); // that of new files in the folder, if there is one
    const ssize_t size = listxattr(from.c_str(), nullptr, 0);
    std::string names(static_cast<size_t>(std::max<ssize_t>(size, 0)), '\0');
    if (size < 0 || listxattr(from.c_str(), names.data(), names.size()) != size)
        return errno == ENOTSUP ? 0 : errno;
    for (size_t at = 0; at < names.size();) {
        const std::string attribute = names.c_str() + at;
        at += attribute.size() + 1;
        if (attribute == "security.capability") // a write takes it away as well
            continue;
        if (const int error = copy_attribute(from, attribute, to))
            return error;
    }
    return 0;
}

#endif

} // namespace

BesideFile::BesideFile(std::string path)
    : path_(std::move(path)), folder_(path_.substr(0, path_.rfind('/') + 1)),
      stem_(stem_beside(std::string_view(path_).substr(folder_.size()))) {}

BesideFile::~BesideFile() {
    if (!name_.empty())
        unlink(name_.c_str());
}

void BesideFile::remove_strays() const {
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(opendir(folder_.empty() ? "." : folder_.c_str()), closedir);
    while (const dirent *entry = entries ? readdir(entries.get()) : nullptr)
        if (const std::string_view name = entry->d_name;
            name.starts_with(stem_) && is_process_and_number(name.substr(stem_.size())))
            remove_if_left(folder_ + entry->d_name);
}

int BesideFile::make(mode_t permissions) {
    for (int number = 0; number < attempts; ++number) {
        std::string name = folder_ + stem_ + std::to_string(getpid()) + "-" + std::to_string(number);
        Descriptor file(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, permissions));
        if (!file.is_open() && errno != EEXIST)
            return errno;
        if (!file.is_open() || !claim(file))
            continue;
        name_ = std::move(name); // a copy could find no memory, and leave the file behind
        file_ = std::move(file);
        return 0;
    }
    return EEXIST;
}

int BesideFile::take_over() {
    struct stat mine, theirs;
    if (fstat(file_, &mine) != 0 || stat(path_.c_str(), &theirs) != 0)
        return errno;
    const bool is_same_owner = mine.st_uid == theirs.st_uid && mine.st_gid == theirs.st_gid;
    if (!is_same_owner && fchown(file_, theirs.st_uid, theirs.st_gid) != 0)
        return errno;
    return copy_attributes(path_, name_, file_);
}

int BesideFile::put_in_place() {
    if (std::rename(name_.c_str(), path_.c_str()) != 0)
        return errno;
    name_.clear();
    return 0;
}

} // namespace maxhost
