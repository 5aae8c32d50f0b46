// Open files.
#include "files/sysfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <mutex>
#include <unordered_set>

#include "ext_path.h"
#include "files/paths.h"
#include "kernel/door.h"
#include "kernel/trace.h"

struct _filestruct {
    int descriptor;
};

namespace maxhost {
namespace {

struct OpenFiles {
    std::mutex mutex;
    std::unordered_set<t_filehandle> handles;
};

OpenFiles &open_files() {
    static auto &the_files = *new OpenFiles;
    return the_files;
}

// Opens a regular file; anything else is refused without waiting for it.
short open_file(const std::string &path, int flags, t_filehandle *ref) {
    auto file = std::make_unique<_filestruct>();
    std::lock_guard lock(open_files().mutex);
    const auto place = open_files().handles.insert(file.get()).first; // everything that needs memory comes first
    file->descriptor = open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666);
    struct stat status;
    const bool opened = file->descriptor >= 0;
    if (opened && fstat(file->descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        *ref = file.release();
        return 0;
    }
    const short error = opened ? short{err_not_found} : file_error();
    if (opened)
        close(file->descriptor);
    open_files().handles.erase(place);
    return error;
}

short open_in_folder(const char *function, const char *name, short path, int flags, t_filehandle *ref) {
    return guarded(function, short{err_io}, [&] {
        const std::string full = name && *name ? path_in_folder(path, name) : "";
        return full.empty() ? short{err_bad_name} : open_file(full, flags, ref);
    });
}

bool is_open(t_filehandle f) {
    std::lock_guard lock(open_files().mutex);
    return open_files().handles.contains(f);
}

// Reads until `wanted` bytes are there or the file ends; -1 on an error.
ssize_t read_fully(int descriptor, char *to, size_t wanted) {
    size_t got = 0;
    while (got < wanted) {
        const ssize_t now = read(descriptor, to + got, wanted - got);
        if (now < 0 && errno != EINTR)
            return -1;
        if (now == 0)
            break;
        got += now < 0 ? 0 : static_cast<size_t>(now);
    }
    return static_cast<ssize_t>(got);
}

} // namespace

size_t files_open() {
    std::lock_guard lock(open_files().mutex);
    return open_files().handles.size();
}

} // namespace maxhost

using namespace maxhost;

short path_opensysfile(const char *name, const short path, t_filehandle *ref, short perm) {
    const int flags = perm == PATH_READ_PERM ? O_RDONLY : perm == PATH_WRITE_PERM ? O_WRONLY : O_RDWR;
    return traced_result(open_in_folder("path_opensysfile", name, path, flags, ref), "path_opensysfile", name,
                         static_cast<int>(path), static_cast<int>(perm));
}

short path_createsysfile(const char *name, short path, t_fourcc type, t_filehandle *ref) {
    return traced_result(open_in_folder("path_createsysfile", name, path, O_WRONLY | O_CREAT | O_EXCL, ref),
                         "path_createsysfile", name, static_cast<int>(path), static_cast<t_atom_long>(type));
}

t_max_err sysfile_read(t_filehandle f, t_ptr_size *count, void *bufptr) {
    if (!at_door(is_open(f) && count && bufptr, "sysfile_read", "not an open file, or nowhere to read to"))
        return MAX_ERR_INVALID_PTR;
    const t_ptr_size wanted = *count;
    const ssize_t got = read_fully(f->descriptor, static_cast<char *>(bufptr), wanted);
    *count = got < 0 ? 0 : static_cast<t_ptr_size>(got);
    return traced_result(*count == wanted ? short{0} : short{err_io}, "sysfile_read", static_cast<t_atom_long>(wanted));
}

t_max_err sysfile_close(t_filehandle f) {
    {
        std::lock_guard lock(open_files().mutex);
        if (open_files().handles.erase(f) == 1) {
            close(f->descriptor);
            delete f;
            return traced_result(0, "sysfile_close");
        }
    }
    misuse("sysfile_close", "not an open file");
    return MAX_ERR_INVALID_PTR;
}
