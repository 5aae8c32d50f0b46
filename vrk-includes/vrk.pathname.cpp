// Paths: from the host's form to the native one, files in the search path, and writing a document to a native path.
#include "vrk.pathname.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#ifdef __APPLE__
#include <CoreServices/CoreServices.h>
#endif

#include <libxml/xmlsave.h>

#include "vrk.owners.h"

namespace fs = std::filesystem;

constexpr char OWN_FOLDER[] = "org.vrk.tessaroll"; // among the temporary items
constexpr size_t WRITE_SIZE = 65536;               // bytes that are handed to the system at once

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

// Whether a file is there that may be replaced, or none: a pipe or a device would be waited for, or lose the text.
static bool is_replaceable(const fs::path &path, const fs::file_status &status) {
    if (!fs::exists(status))
        return true;
    std::FILE *file = fs::is_regular_file(status) ? std::fopen(path.c_str(), "r+b") : nullptr;
    return file && std::fclose(file) == 0;
}

// A new empty file in the folder of another, under a name that nobody has and that is put behind the folder in `name`.
// Null when none can be made.
static std::FILE *new_file_beside(const fs::path &path, std::string &name) {
    name = (path.parent_path() / ".vrk-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    std::FILE *file = descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
    if (descriptor >= 0 && !file) {
        close(descriptor);
        std::remove(name.c_str());
    }
    return file;
}

// What turns UTF-8 into the encoding of a document, null when it has none. False when its encoding is not known.
static bool find_encoder(const xmlDoc *doc, xmlCharEncodingHandlerPtr *encoder) {
    *encoder = doc->encoding ? xmlFindCharEncodingHandler((const char *)doc->encoding) : nullptr;
    return *encoder || !doc->encoding;
}

// A document on its way to a file.
struct document_output {
    std::FILE *file;
    xmlOutputBufferPtr buffer;
};

static int write_bytes(void *output, const char *bytes, int count) {
    std::FILE *file = static_cast<document_output *>(output)->file;
    return std::fwrite(bytes, 1, static_cast<size_t>(count), file) == static_cast<size_t>(count) ? count : -1;
}

// libxml2 counts what a buffer has lost for want of memory as written; such a buffer has no content.
static int check_buffer(void *output) {
    return xmlBufContent(static_cast<document_output *>(output)->buffer->buffer) ? 0 : -1;
}

// The number of bytes that a document takes in an open file, which is closed; -1 when not all of them were written.
static int write_document(std::FILE *file, xmlDocPtr doc) {
    std::setvbuf(file, nullptr, _IOFBF, WRITE_SIZE);
    document_output output = {file, nullptr};
    xmlCharEncodingHandlerPtr encoder = nullptr;
    if (find_encoder(doc, &encoder))
        output.buffer = xmlOutputBufferCreateIO(write_bytes, check_buffer, &output, encoder);
    if (!output.buffer && encoder)
        xmlCharEncCloseFunc(encoder);
    const int size = output.buffer ? xmlSaveFileTo(output.buffer, doc, (const char *)doc->encoding) : -1;
    return std::fclose(file) == 0 ? size : -1;
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

// Beside the file and renamed, so that what was there stays when the disk is full; a link stays a link. The number of
// bytes, or -1.
static int replace_file(const char *name, xmlDocPtr doc) {
    std::error_code error;
    const fs::path path = fs::is_symlink(name, error) ? fs::canonical(name, error) : fs::path(name);
    if (!is_replaceable(path, fs::status(path, error)))
        return -1;
    std::string beside;
    std::FILE *file = new_file_beside(path, beside);
    if (!file)
        return -1;
    const int size = write_document(file, doc);
    if (size >= 0 && take_over_status(path, beside) && std::rename(beside.c_str(), path.c_str()) == 0)
        return size;
    std::remove(beside.c_str());
    return -1;
}

int vrk_save_document(t_symbol *native_path, xmlDocPtr doc) {
    if (!native_path || !doc)
        return -1;
    const quiet_libxml quiet;
    try {
        return replace_file(native_path->s_name, doc);
    } catch (const std::exception &) { // no memory for a path
        return -1;
    }
}
