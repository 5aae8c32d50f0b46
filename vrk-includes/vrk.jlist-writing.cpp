// Writing a list as a resource file.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "vrk.jlist.h"

#include "vrk.jxml-resfile.h"
#include "vrk.pathname.h"
#include "vrk.wholefile.h"

using document_holder = std::unique_ptr<t_jxmlfile, Releaser<jxmlfile_free>>;

namespace {

struct file_choice {
    t_symbol *given; // by the patch; null: the user is asked
    char name[MAX_FILENAME_CHARS];
    short path_id;
    char full_path[MAX_PATH_CHARS];
    bool is_made; // the file was not there, and is now, empty
};

} // namespace

static void note_failure(t_jlist *list, t_symbol *name, int error) {
    list->unwritten = name;
    list->write_error = error;
}

t_symbol *jlist_unwritten(const t_jlist *list, int *error) {
    *error = list->write_error;
    return list->unwritten;
}

// ---- the file

static bool ask_for_file(const t_jlist *list, file_choice *choice) {
    t_fourcc offered = JLIST_FILE_TYPE, type = 0;
    saveas_promptset("Save as:");
    strncpy_zero(choice->name, list->column_name->s_name, sizeof(choice->name));
    return !saveasdialog_extended(choice->name, &choice->path_id, &type, &offered, 1);
}

// The lookup may find a file of that name in another folder of the search path, which is not the one that was chosen.
static bool chosen_file_exists(const file_choice &choice) {
    char name[MAX_PATH_CHARS];
    strncpy_zero(name, choice.name, sizeof(name));
    short path_id = choice.path_id;
    t_fourcc type = 0;
    if (locatefile_extended(name, &path_id, &type, nullptr, 0))
        return false;
    char full_path[MAX_PATH_CHARS];
    return path_id == choice.path_id || !path_topathname(choice.path_id, choice.name, full_path);
}

static void create_chosen_file(file_choice *choice) {
    t_filehandle file = nullptr;
    if (path_createsysfile(choice->name, choice->path_id, JLIST_FILE_TYPE, &file))
        return;
    sysfile_close(file);
    choice->is_made = true;
}

// False when nothing is to be written: the dialog was cancelled. For a name that the patch gave the steps are the same,
// with an empty name; whatever the host makes of them, the name that was given is the one that counts after them.
static bool choose_file(const t_jlist *list, file_choice *choice) {
    if (!choice->given && !ask_for_file(list, choice))
        return false;
    if (!chosen_file_exists(*choice))
        create_chosen_file(choice);
    path_topotentialname(choice->path_id, choice->name, choice->full_path, 0);
    if (choice->given)
        strncpy_zero(choice->full_path, choice->given->s_name, sizeof(choice->full_path));
    return true;
}

// ---- the document

// Gives a holder a fresh document to write to.
static bool make_document(t_jxmlfile *holder) {
    holder->doc = jxmlfile_make_document(holder).release();
    holder->loaded = holder->doc ? 1 : 0;
    return holder->doc;
}

// How many rows there are to write.
static long count_rows(const t_jlist *list) {
    critical_section hold;
    return list->items ? list->row_count : 0;
}

// The rows as they are at one moment, so that the region is not held while they are written.
static malloc_array<void *> copy_rows(t_jlist *list, long *count) {
    critical_section hold;
    *count = count_rows(list);
    malloc_array<void *> copy((void **)std::malloc((size_t)std::max(*count, 1L) * sizeof(void *)));
    if (copy)
        std::copy_n(list->items, *count, copy.get());
    return copy;
}

// A text that XML cannot hold has been reported and is written as an empty resource: without a gap in the numbers the
// others can be read again.
static void write_text(t_jxmlfile *holder, t_symbol *type, t_symbol *text, long number) {
    t_atom value;
    atom_setsym(&value, text);
    if (!jxmlresfile_set_resource(holder, type, number, &value, 0, 1))
        return;
    atom_setsym(&value, gensym(""));
    jxmlresfile_set_resource(holder, type, number, &value, 0, 0);
}

static bool write_texts(t_jlist *list, t_jxmlfile *holder) {
    long count = 0;
    const malloc_array<void *> texts = copy_rows(list, &count);
    t_symbol *type = gensym("string");
    for (long i = 0; texts && i < count; i++)
        write_text(holder, type, (t_symbol *)texts[i], i);
    return (bool)texts;
}

// The image's file data, null for a row without an image. False when the image cannot be encoded.
static bool encode_image(t_jlist *list, long row, void **data) {
    const image_surface image = jlist_share_image(list, row);
    long size = 0;
    *data = nullptr;
    if (image)
        jgraphics_write_image_surface_to_filedata(image.get(), JGRAPHICS_FILEFORMAT_PNG, data, &size);
    return !image || *data;
}

// A row without data is written as an empty resource, which reads back as such a row: the numbers stay without gaps.
static void write_images(t_jlist *list, t_jxmlfile *holder) {
    for (long i = 0; i < count_rows(list); i++) {
        void *data = nullptr;
        if (!encode_image(list, i + 1, &data))
            object_error(list->owner, "image %ld cannot be encoded", i);
        t_atom value;
        if (data)
            atom_setobj(&value, data); // passes to the node access, which releases it
        else
            atom_setsym(&value, gensym(""));
        jxmlresfile_set_resource(holder, gensym("image"), i, &value, data != nullptr, 1);
    }
}

static bool write_rows(t_jlist *list, t_jxmlfile *holder) {
    if (list->column_name == gensym("vrk.tessaroll"))
        return write_texts(list, holder);
    write_images(list, holder);
    return true;
}

// ---- writing

// 0, or minus the error number of what failed.
static int make_empty_file(const t_symbol *path) {
    return vrk_file_exists(path->s_name) ? 0 : vrk_replace_file(path->s_name, "", 0);
}

// The same; memory that runs out for the items is posted, and is not a failure to write the file.
static int write_file(t_jlist *list, t_jxmlfile *holder, t_symbol *path, const file_choice &choice) {
    if (!jlist_hasdata(list))
        return make_empty_file(path);
    int result = 0;
    if (make_document(holder) && write_rows(list, holder))
        result = std::min(vrk_save_document(path, holder->doc), 0); // bytes are no failure
    else
        object_error(list->owner, "out of memory: the items are not written");
    if (choice.is_made && !choice.given) // what was made for an empty name is another file
        vrk_remove_empty_file(path->s_name);
    return result;
}

void jlist_write(t_jlist *list, t_symbol *, short argc, t_atom *argv) {
    note_failure(list, nullptr, 0);
    const document_holder holder(jxmlfile_new(list->owner)); // its own names, not those of the owner's attributes
    if (!holder) {
        object_error(list->owner, "out of memory: the items are not written");
        return;
    }
    file_choice choice = {};
    choice.given = argc > 0 && atom_gettype(argv) == A_SYM ? atom_getsym(argv) : nullptr;
    if (choice.given && std::strlen(choice.given->s_name) >= sizeof(choice.full_path)) {
        note_failure(list, choice.given, ENAMETOOLONG);
        return;
    }
    if (!choose_file(list, &choice))
        return;
    t_symbol *path = vrk_path_to_OSX_path(list->owner, gensym(choice.full_path));
    const bool is_converted = path->s_name[0] || !choice.full_path[0]; // unless the full path is too long
    if (const int result = is_converted ? write_file(list, holder.get(), path, choice) : -ENAMETOOLONG)
        note_failure(list, choice.given ? choice.given : gensym(choice.name), -result);
}
