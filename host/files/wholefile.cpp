// Whole files.
#include "files/wholefile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace maxhost {
namespace {

std::string errno_text() { return std::generic_category().message(errno); }

// A file descriptor that is closed at the end of its scope.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool is_open() const { return number_ >= 0; }
    operator int() const { return number_; }
    bool close() {
        const int number = number_;
        number_ = -1;
        return number < 0 || ::close(number) == 0;
    }

  private:
    int number_;
};

bool write_fully(int descriptor, const std::string &content) {
    for (size_t done = 0; done < content.size();) {
        const ssize_t now = write(descriptor, content.data() + done, content.size() - done);
        if (now < 0 && errno != EINTR)
            return false;
        done += now < 0 ? 0 : static_cast<size_t>(now);
    }
    return true;
}

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

// What the user's mask leaves of the permissions of a new file.
mode_t usual_mode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// The file that a path leads to, through symbolic links.
std::string target_of(const std::string &path) {
    std::error_code error;
    const fs::path target = fs::canonical(path, error);
    return error ? path : target.string();
}

} // namespace

bool read_whole_file(const std::string &path, std::string &content, std::string &reason) {
    content.clear();
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)); // a pipe is not waited for
    struct stat status;
    if (!file.is_open() || fstat(file, &status) != 0) {
        reason = errno_text();
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        reason = "not a regular file";
        return false;
    }
    if (read_fully(file, content))
        return true;
    reason = errno_text();
    return false;
}

bool replace_whole_file(const std::string &path, const std::string &content, std::string &reason, FileStamp *written) {
    const std::string target = target_of(path);
    struct stat status;
    const bool exists = stat(target.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        reason = "not a regular file";
        return false;
    }
    if (exists && access(target.c_str(), W_OK) != 0) {
        reason = errno_text();
        return false;
    }
    std::string beside = target + ".XXXXXX";
    Descriptor file(mkostemp(beside.data(), O_CLOEXEC));
    if (!file.is_open()) {
        reason = errno_text();
        return false;
    }
    const mode_t mode = exists ? status.st_mode & 07777 : usual_mode();
    if (write_fully(file, content) && fchmod(file, mode) == 0 && fsync(file) == 0) {
        const FileStamp stamp = stamp_of(file);
        if (file.close() && std::rename(beside.c_str(), target.c_str()) == 0) {
            if (written)
                *written = stamp;
            return true;
        }
    }
    reason = errno_text();
    unlink(beside.c_str());
    return false;
}

} // namespace maxhost
