// Paths: from the host's form to the native one, files in the search path, and writing a document to a native path.
#include "vrk.pathname.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#ifdef __APPLE__
#include <CoreServices/CoreServices.h>
#endif

#include "vrk.owners.h"

namespace fs = std::filesystem;

constexpr char OWN_FOLDER[] = "org.vrk.tessaroll"; // among the temporary items

t_symbol *vrk_path_to_OSX_path(t_object *, t_symbol *pathname) {
    char native[MAX_PATH_CHARS] = "";
    if (pathname)
        path_nameconform(pathname->s_name, native, PATH_STYLE_SLASH, PATH_TYPE_BOOT);
    return gensym(native); // nothing, rather than a half path, when the host has failed
}

t_symbol *vrk_file_locate(t_symbol *filename) {
    if (!filename || std::strlen(filename->s_name) >= MAX_PATH_CHARS)
        return nullptr;
    // Room for a full path, which may be looked up as well. On the stack: a file must not count as missing, and be made
    // anew by the caller, because memory has run out.
    char name[MAX_PATH_CHARS];
    char path[MAX_PATH_CHARS] = "";
    strncpy_zero(name, filename->s_name, sizeof name);
    short path_id = 0;
    t_fourcc type = 0;
    if (locatefile_extended(name, &path_id, &type, nullptr, 0) != 0 ||
        path_topotentialname(path_id, name, path, 0) != 0)
        return nullptr;
    return gensym(path);
}

void vrk_set_editorfile_from_pathname(t_object *editor, t_symbol *pathname) {
    if (!editor || !pathname)
        return;
    const host_block<char> name(sysmem_newptrclear(MAX_FILENAME_CHARS));
    short path_id = 0;
    if (!name || path_frompathname(pathname->s_name, &path_id, name.get()) != 0)
        return;
    object_method(editor, gensym("filename"), name.get(), path_id);
    object_attr_setsym(editor, gensym("title"), gensym(name.get()));
}

// The folder that holds the user's temporary items.
static short temporary_items() {
#ifdef __APPLE__
    FSRef folder = {};
    FSFindFolder(kUserDomain, kTemporaryFolderType, kDontCreateFolder, &folder);
    return path_fromfsref(&folder);
#else
    return path_tempfolder();
#endif
}

// The folder `name` in `parent`, made unless it is there; 0 when it can neither be made nor had.
static short folder_in(short parent, const char *name) {
    short folder = 0;
    if (path_createfolder(parent, name, &folder) == 0 || path_getpath(parent, name, &folder) == 0)
        return folder;
    return 0;
}

short vrk_path_tempfolder(const char *subfolder) {
    const short items = subfolder ? temporary_items() : short{0};
    const short own = items ? folder_in(items, OWN_FOLDER) : short{0}; // 0 would be the host's default folder
    return own ? folder_in(own, subfolder) : short{0};
}

static bool write_file(const char *path, std::string_view text) {
    std::FILE *file = std::fopen(path, "wb");
    if (!file)
        return false;
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && written;
}

// Whether a file is there that may be replaced, or none: a pipe or a device would be waited for, or lose the text.
static bool is_replaceable(const fs::path &path, const fs::file_status &status) {
    if (!fs::exists(status))
        return true;
    std::FILE *file = fs::is_regular_file(status) ? std::fopen(path.c_str(), "r+b") : nullptr;
    return file && std::fclose(file) == 0;
}

// A new empty file in the folder of another, under a name that nobody has; empty when none can be made.
static std::string new_file_beside(const fs::path &path) {
    std::string name = (path.parent_path() / ".vrk-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0)
        return "";
    close(descriptor);
    return name;
}

// Gives a file the permissions and the owner of the one whose place it takes, or those of any new file.
static bool take_over_status(const fs::path &from, const std::string &file) {
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

// Beside the file and renamed, so that what was there stays when the disk is full; a link stays a link.
static bool replace_file(const char *name, std::string_view text) {
    std::error_code error;
    const fs::path path = fs::is_symlink(name, error) ? fs::canonical(name, error) : fs::path(name);
    if (!is_replaceable(path, fs::status(path, error)))
        return false;
    const std::string beside = new_file_beside(path);
    if (beside.empty())
        return false;
    if (write_file(beside.c_str(), text) && take_over_status(path, beside) &&
        std::rename(beside.c_str(), path.c_str()) == 0)
        return true;
    std::remove(beside.c_str());
    return false;
}

int vrk_save_document(t_symbol *native_path, xmlDocPtr doc) {
    if (!native_path || !doc)
        return -1;
    const quiet_libxml quiet;
    xmlChar *dumped = nullptr;
    int size = 0;
    xmlDocDumpMemory(doc, &dumped, &size);
    const xml_text text(dumped);
    if (!text || size < 0)
        return -1;
    const std::string_view bytes(reinterpret_cast<const char *>(text.get()), static_cast<size_t>(size));
    try {
        return replace_file(native_path->s_name, bytes) ? size : -1;
    } catch (const std::exception &) { // no memory for a path
        return -1;
    }
}
