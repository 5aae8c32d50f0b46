// Folders and paths.
#include "files/paths.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <mutex>

#include "ext_path.h"
#include "ext_strings.h"
#include "kernel/door.h"
#include "kernel/trace.h"

namespace fs = std::filesystem;

namespace maxhost {
namespace {

struct Folders {
    std::mutex mutex;
    std::vector<std::string> searched;
    std::string patcher;
    std::vector<std::string> by_id; // id - 1
};

Folders &folders() {
    static auto &the_folders = *new Folders;
    return the_folders;
}

// A full path without dots and without a slash at its end.
std::string tidy(const fs::path &path) {
    std::error_code error;
    std::string text = fs::absolute(path, error).lexically_normal().string();
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return text;
}

bool is_folder(const fs::path &path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

// Only regular files count as files: opening a pipe or a device could wait for ever.
bool is_file(const fs::path &path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

t_fourcc type_of(const fs::path &file) {
    const std::string ending = file.extension().string();
    if (ending == ".xml" || ending == ".txt")
        return 0x54455854; // 'TEXT'
    if (ending == ".png")
        return 0x504E4720; // 'PNG '
    if (ending == ".jpg" || ending == ".jpeg")
        return 0x4A504547; // 'JPEG'
    return 0;
}

std::vector<std::string> search_folders() {
    std::lock_guard lock(folders().mutex);
    std::vector<std::string> all = folders().searched;
    if (!folders().patcher.empty())
        all.push_back(folders().patcher);
    all.push_back(tidy("."));
    return all;
}

// Copies a path into a buffer of the API; false when it does not fit.
bool put(const std::string &text, char *buffer, size_t size) {
    if (text.size() >= size)
        return false;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

bool has_type(const fs::path &file, const t_fourcc *types, short count) {
    return !types || count <= 0 || std::find(types, types + count, type_of(file)) != types + count;
}

// The first file of that name and one of the types; empty when there is none.
fs::path first_file(const fs::path &asked, const t_fourcc *types, short count) {
    std::vector<fs::path> candidates;
    if (asked.is_absolute())
        candidates.push_back(asked);
    else if (!asked.empty())
        for (const std::string &folder : search_folders())
            candidates.push_back(fs::path(folder) / asked);
    for (const fs::path &candidate : candidates)
        if (is_file(candidate) && has_type(candidate, types, count))
            return tidy(candidate);
    return {};
}

short locate(char *name, short *outvol, t_fourcc *outtype, const t_fourcc *types, short count) {
    const fs::path found = first_file(name, types, count);
    if (found.empty())
        return err_not_found;
    const short id = folder_id(found.parent_path().string());
    if (id == 0 || !put(found.filename().string(), name, MAX_PATH_CHARS))
        return err_bad_name;
    *outvol = id;
    *outtype = type_of(found);
    return 0;
}

short full_path(short id, const char *file, char *name, bool must_exist) {
    const std::string path = file && *file ? path_in_folder(id, file) : "";
    std::error_code error;
    if (path.empty())
        return err_bad_name;
    if (must_exist && !fs::exists(path, error))
        return err_not_found;
    return put(path, name, MAX_PATH_CHARS) ? 0 : err_bad_name;
}

short conform(const char *src, char *dst, long style, long type) {
    if (style != PATH_STYLE_SLASH || type != PATH_TYPE_BOOT || !*src)
        return err_bad_name;
    const fs::path path(src);
    const std::string full = path.is_absolute() ? path.string() : tidy(fs::path(default_folder()) / path);
    return put(full, dst, MAX_PATH_CHARS) ? 0 : err_bad_name;
}

short split(const char *name, short *path, char *filename) {
    const fs::path full(name);
    const std::string file = full.filename().string();
    if (!full.is_absolute() || file.empty())
        return err_bad_name;
    const short id = folder_id(full.parent_path().string());
    if (id == 0)
        return err_not_found;
    if (!put(file, filename, MAX_FILENAME_CHARS))
        return err_bad_name;
    *path = id;
    return 0;
}

short subfolder(short path, const char *name, short *id, bool create) {
    const std::string folder = name && *name ? path_in_folder(path, name) : "";
    std::error_code error;
    if (folder.empty())
        return err_bad_name;
    if (create && !fs::create_directory(folder, error))
        return error ? err_io : err_exists;
    *id = folder_id(folder);
    return *id ? 0 : err_not_found;
}

} // namespace

void set_search_folders(std::vector<std::string> searched) {
    for (std::string &folder : searched)
        folder = tidy(folder);
    std::lock_guard lock(folders().mutex);
    folders().searched = std::move(searched);
}

void set_patcher_folder(const std::string &folder) {
    std::lock_guard lock(folders().mutex);
    folders().patcher = folder.empty() ? "" : tidy(folder);
}

std::string default_folder() {
    std::lock_guard lock(folders().mutex);
    return folders().patcher.empty() ? tidy(".") : folders().patcher;
}

std::string find_in_search_path(const std::string &file) { return first_file(file, nullptr, 0).string(); }

short folder_id(const std::string &folder) {
    const std::string path = tidy(folder);
    if (!is_folder(path))
        return 0;
    std::lock_guard lock(folders().mutex);
    std::vector<std::string> &known = folders().by_id;
    const auto found = std::find(known.begin(), known.end(), path);
    const auto id = std::distance(known.begin(), found) + 1;
    if (id > std::numeric_limits<short>::max())
        return 0;
    if (found == known.end())
        known.push_back(path);
    return static_cast<short>(id);
}

std::string path_in_folder(short id, const std::string &file) {
    std::string folder;
    if (id == 0) {
        folder = default_folder();
    } else {
        std::lock_guard lock(folders().mutex);
        if (id < 0 || static_cast<size_t>(id) > folders().by_id.size())
            return "";
        folder = folders().by_id[static_cast<size_t>(id) - 1];
    }
    return folder + (folder.back() == '/' ? "" : "/") + file;
}

short file_error() {
    switch (errno) {
    case ENOENT:
    case ENOTDIR:
        return err_not_found;
    case EEXIST:
        return err_exists;
    case EACCES:
    case EPERM:
    case EROFS:
        return err_permission;
    case ENAMETOOLONG:
        return err_bad_name;
    default:
        return err_io;
    }
}

} // namespace maxhost

using namespace maxhost;

// The error code of a call, also when memory runs out in it.
template <typename Call> static short result_of(const char *function, const Call &call) {
    return guarded(function, short{err_io}, call);
}

short locatefile_extended(char *name, short *outvol, t_fourcc *outtype, const t_fourcc *filetypelist, short numtypes) {
    if (!at_door(name && outvol && outtype, "locatefile_extended", "null argument"))
        return err_bad_name;
    return result_of("locatefile_extended", [&] {
        const std::string asked = name;
        return traced_result(locate(name, outvol, outtype, filetypelist, numtypes), "locatefile_extended",
                             asked.c_str(), static_cast<int>(numtypes));
    });
}

short path_topathname(const short path, const char *file, char *name) {
    return traced_result(result_of("path_topathname", [&] { return full_path(path, file, name, true); }),
                         "path_topathname", static_cast<int>(path), file);
}

short path_topotentialname(const short path, const char *file, char *name, short check) {
    return traced_result(result_of("path_topotentialname", [&] { return full_path(path, file, name, false); }),
                         "path_topotentialname", static_cast<int>(path), file, static_cast<int>(check));
}

short path_nameconform(const char *src, char *dst, long style, long type) {
    if (!at_door(src && dst, "path_nameconform", "null argument"))
        return err_bad_name;
    return traced_result(result_of("path_nameconform", [&] { return conform(src, dst, style, type); }),
                         "path_nameconform", src, style, type);
}

short path_frompathname(const char *name, short *path, char *filename) {
    if (!at_door(name && path && filename, "path_frompathname", "null argument"))
        return err_bad_name;
    return traced_result(result_of("path_frompathname", [&] { return split(name, path, filename); }),
                         "path_frompathname", name);
}

short path_tempfolder(void) {
    const short folder = guarded("path_tempfolder", short{0}, [] {
        std::error_code error;
        const fs::path path = fs::temp_directory_path(error);
        return error ? short{0} : folder_id(path.string());
    });
    return traced_result(folder, "path_tempfolder");
}

short path_createfolder(const short path, const char *name, short *newpath) {
    return traced_result(result_of("path_createfolder", [&] { return subfolder(path, name, newpath, true); }),
                         "path_createfolder", static_cast<int>(path), name);
}

short path_getpath(short path, const char *name, short *outpath) {
    return traced_result(result_of("path_getpath", [&] { return subfolder(path, name, outpath, false); }),
                         "path_getpath", static_cast<int>(path), name);
}
