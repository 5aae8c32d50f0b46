// Files that are read or replaced as a whole, on POSIX systems.
#include "vrk.wholefile.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

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

// Where the links of a path lead; empty when that is nowhere. Any other path as it is.
static std::string without_links(const char *path) {
    struct stat status;
    if (lstat(path, &status) != 0 || !S_ISLNK(status.st_mode))
        return path;
    const std::unique_ptr<char, void (*)(void *)> target(realpath(path, nullptr), std::free);
    return target ? target.get() : "";
}

// Whether a file is there that may be replaced, or none: a pipe or a device would be waited for, or lose the text.
static bool is_replaceable(const std::string &path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return !path.empty();
    std::FILE *file = S_ISREG(status.st_mode) ? std::fopen(path.c_str(), "r+b") : nullptr;
    return file && std::fclose(file) == 0;
}

// A new empty file in the folder of another, under a name that nobody has and that is put behind the folder in `name`.
// Null when none can be made.
static std::FILE *new_file_beside(const std::string &path, std::string &name) {
    name = path.substr(0, path.rfind('/') + 1) + ".vrk-XXXXXX";
    const int descriptor = mkstemp(name.data());
    std::FILE *file = descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
    if (descriptor >= 0 && !file) { // fdopen fails here only when the C library itself runs out of memory
        close(descriptor);          // GCOVR_EXCL_LINE
        std::remove(name.c_str());  // GCOVR_EXCL_LINE
    }
    return file;
}

// Gives a file the permissions and the owner of the one whose place it takes, or those of any new file.
static bool take_over_status(const std::string &from, const std::string &file) {
    struct stat status;
    if (stat(from.c_str(), &status) != 0) {
        const mode_t mask = umask(0);
        umask(mask);
        return chmod(file.c_str(), 0666 & ~mask) == 0;
    }
    // Only root can give files away; for anybody else the file becomes his own.
    [[maybe_unused]] const int failure = chown(file.c_str(), status.st_uid, status.st_gid);
    return chmod(file.c_str(), status.st_mode & 07777) == 0;
}

// Beside the file and renamed, so that what was there stays when the disk is full.
static int replace_file(const char *name, whole_file_writer write, void *what) {
    const std::string path = without_links(name);
    if (!is_replaceable(path))
        return -1;
    std::string beside;
    std::FILE *file = new_file_beside(path, beside);
    if (!file)
        return -1;
    const int size = write(file, what);
    if (size >= 0 && take_over_status(path, beside) && std::rename(beside.c_str(), path.c_str()) == 0)
        return size;
    std::remove(beside.c_str());
    return -1;
}

int vrk_replace_file(const char *native_path, whole_file_writer write, void *what) {
    try {
        return replace_file(native_path, write, what);
    } catch (const std::exception &) { // no memory for a path
        return -1;
    }
}
