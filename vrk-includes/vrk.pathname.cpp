// Paths: from the host's form to the native one, files in the search path, and writing a document to a native path.
#include <cstdio>
#include <cstring>

#ifdef __APPLE__
#include <CoreServices/CoreServices.h>
#endif

#include <libxml/xmlsave.h>

#include "vrk.owners.h" // libxml2's and the system's headers come before the host's, whose macros could bite

#include "vrk.pathname.h"
#include "vrk.wholefile.h"

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

// What turns UTF-8 into the encoding of a document, null when it has none. False when its encoding is not known, or
// when memory runs out: libxml2 then leaves the name of an encoder away, without which it never releases it.
static bool find_encoder(const xmlDoc *doc, xmlCharEncodingHandlerPtr *encoder) {
    *encoder = nullptr;
    if (!doc->encoding)
        return true;
    xml_text name(xmlStrdup(doc->encoding));
    if (name)
        *encoder = xmlFindCharEncodingHandler((const char *)doc->encoding);
    if (*encoder && !(*encoder)->name)
        (*encoder)->name = (char *)name.release();
    return *encoder;
}

// A buffer that has run out of memory has no bytes; libxml2 would count what it has lost as written.
static int write_bytes(void *file, const char *bytes, int count) {
    const size_t size = (size_t)count;
    return bytes && std::fwrite(bytes, 1, size, (std::FILE *)file) == size ? count : -1;
}

// The number of bytes that a document takes in an open file, which is closed; -1 when not all of them were written.
static int write_document(std::FILE *file, void *document) {
    xmlDocPtr doc = (xmlDocPtr)document;
    std::setvbuf(file, nullptr, _IOFBF, WRITE_SIZE);
    xmlCharEncodingHandlerPtr encoder = nullptr;
    xmlOutputBufferPtr output =
        find_encoder(doc, &encoder) ? xmlOutputBufferCreateIO(write_bytes, nullptr, file, encoder) : nullptr;
    if (!output && encoder)
        xmlCharEncCloseFunc(encoder);
    const int size = output ? xmlSaveFileTo(output, doc, (const char *)doc->encoding) : -1;
    return std::fclose(file) == 0 ? size : -1;
}

int vrk_save_document(t_symbol *native_path, xmlDocPtr doc) {
    if (!native_path || !doc)
        return -1;
    const quiet_libxml quiet;
    return vrk_replace_file(native_path->s_name, write_document, doc);
}
