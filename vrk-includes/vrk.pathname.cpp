// Paths: from the host's form to the native one, files in the search path, and writing a document to a native path.
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#ifdef __APPLE__
#include <CoreServices/CoreServices.h>
#endif

#include <libxml/xmlsave.h>

#include "vrk.jxml-encoding.h" // libxml2's and the system's headers come before the host's, whose macros could bite
#include "vrk.owners.h"

#include "vrk.pathname.h"
#include "vrk.wholefile.h"

constexpr char OWN_FOLDER[] = "org.vrk.tessaroll"; // among the temporary items
constexpr size_t FIRST_ROOM = 65536;               // bytes, for the text of a document

t_symbol *vrk_path_to_OSX_path(t_object *, t_symbol *pathname) {
    char native[MAX_PATH_CHARS] = "";
    if (pathname)
        path_nameconform(pathname->s_name, native, PATH_STYLE_SLASH, PATH_TYPE_BOOT);
    return gensym(native); // whatever the host has left there when it has failed: nothing, in the embedded host
}

t_symbol *vrk_file_locate(t_symbol *filename) {
    const size_t length = filename ? std::strlen(filename->s_name) : MAX_PATH_CHARS;
    if (length >= MAX_PATH_CHARS)
        return nullptr;
    const size_t size = std::max<size_t>(length + 1, MAX_FILENAME_CHARS); // a full path may be looked up as well
    const host_block<char> name(sysmem_newptrclear(size)), path(sysmem_newptrclear(MAX_PATH_CHARS));
    if (!name || !path)
        return nullptr;
    strncpy_zero(name.get(), filename->s_name, static_cast<long>(size));
    short path_id = 0;
    t_fourcc type = 0;
    const short failure = locatefile_extended(name.get(), &path_id, &type, nullptr, 0);
    const short no_path = path_topotentialname(path_id, name.get(), path.get(), 0);
    return failure || no_path ? nullptr : gensym(path.get());
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

// The text of a document, while it grows.
struct document_text {
    malloc_array<char> bytes;
    size_t size = 0;
    size_t room = 0;
};

static bool make_room(document_text *text, size_t size) {
    if (size <= text->room)
        return true;
    const size_t room = std::max({size, 2 * text->room, FIRST_ROOM});
    char *grown = (char *)std::realloc(text->bytes.get(), room);
    if (!grown)
        return false;
    (void)text->bytes.release(); // realloc has it
    text->bytes.reset(grown);
    text->room = room;
    return true;
}

// A buffer that has run out of memory has no bytes; libxml2 would count what it has lost as written.
static int append_bytes(void *context, const char *bytes, int count) {
    document_text *text = (document_text *)context;
    const size_t size = text->size + (size_t)count;
    if (!bytes || !make_room(text, size))
        return -1;
    std::memcpy(text->bytes.get() + text->size, bytes, (size_t)count);
    text->size = size;
    return count;
}

// Has libxml2 write to a text in an encoding, null for its own choice: write(output) writes and closes the output. 0,
// or the error number of what failed.
template <typename Write> static int print(const char *encoding, document_text *text, Write write) {
    const quiet_libxml quiet;
    xml_encoder encoder = encoding ? jxml_find_encoder(encoding) : nullptr;
    if (!encoder && encoding)
        return quiet.out_of_memory() ? ENOMEM : ENOTSUP;
    xmlOutputBufferPtr output = xmlOutputBufferCreateIO(append_bytes, nullptr, text, encoder.get());
    if (output)
        (void)encoder.release(); // the buffer closes it
    return output && write(output) >= 0 ? 0 : ENOMEM;
}

// Whether what is written in an encoding can be read again. Some encode the declaration itself, so that no reader finds
// the name of the encoding; others lack characters of the markup. 0, or the error number of what failed.
static int try_encoding(const char *encoding) {
    char bytes[256];
    const int length = std::snprintf(
        bytes, sizeof bytes, "<?xml version=\"1.0\" encoding=\"%s\"?>\n<a b='&#1;'/><![CDATA[]]><!---->\n", encoding);
    if (length >= (int)sizeof bytes) // no encoding has such a name
        return ENOTSUP;
    const std::string_view markup(bytes, (size_t)length);
    document_text text;
    const int error = print(encoding, &text, [markup](xmlOutputBufferPtr output) {
        xmlOutputBufferWrite(output, (int)markup.size(), markup.data());
        return xmlOutputBufferClose(output);
    });
    if (error)
        return error;
    jxml_decoded read;
    return !jxml_decode({text.bytes.get(), text.size}, &read).format && read.text == markup ? 0 : ENOTSUP;
}

// The text of a document in its own encoding. 0, or the error number of what failed.
static int print_document(xmlDocPtr doc, document_text *text) {
    const char *encoding = (const char *)doc->encoding;
    if (const int error = encoding ? try_encoding(encoding) : 0)
        return error;
    return print(encoding, text,
                 [doc, encoding](xmlOutputBufferPtr output) { return xmlSaveFileTo(output, doc, encoding); });
}

int vrk_save_document(t_symbol *native_path, xmlDocPtr doc) {
    if (!native_path || !doc)
        return -EINVAL;
    document_text text;
    if (const int error = print_document(doc, &text))
        return -error;
    const int result = vrk_replace_file(native_path->s_name, text.bytes.get(), text.size);
    return result < 0 ? result : (int)std::min<size_t>(text.size, INT_MAX);
}
