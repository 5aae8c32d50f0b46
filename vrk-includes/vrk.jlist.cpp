// The list model: rows with a current row, the data view that shows them, and their reading from XML.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

#include "vrk.jlist.h"

#include "vrk.jattributes.h"
#include "vrk.jxml-resfile.h"
#include "vrk.pathname.h"
#include "vrk.utf8.h"

// ---- rows

namespace {

// The row array of a list with `count` rows and the ids that its view gets. Made outside the region, put in inside it.
struct row_arrays {
    malloc_array<void *> items; // not filled
    malloc_array<t_rowref> ids; // 1 to count
    long count = 0;

    explicit operator bool() const { return items && ids; }
};

enum class edit_result { done, too_few_rows, no_such_row, no_memory };

} // namespace

// Of no rows there is an array as well: null would be a list without data.
static void **allocate_rows(long count) { return (void **)std::malloc((size_t)std::max(count, 1L) * sizeof(void *)); }

static row_arrays make_row_arrays(long count) {
    row_arrays arrays;
    arrays.items.reset(allocate_rows(count));
    arrays.ids.reset(allocate_rows(count));
    arrays.count = count;
    if (t_rowref *ids = arrays.ids.get())
        for (long i = 0; i < count; i++)
            ids[i] = (t_rowref)(t_ptr_int)(i + 1);
    return arrays;
}

// Between the making of the arrays and the region only a "clear" can have changed the number of rows: there is room for
// those that are left then. False when memory has run out.
static bool fit_row_arrays(row_arrays &arrays, long count) {
    const bool fit = arrays && count <= arrays.count;
    arrays.count = count;
    return fit;
}

static bool holds_texts(const t_jlist *list) {
    static const t_symbol *const text_column = gensym("vrk.tessaroll");
    return list->column_name == text_column;
}

static void destroy_image(void *image) {
    if (image)
        jgraphics_surface_destroy((t_jsurface *)image);
}

// Gives back what the rows own. Texts are symbols and nobody's.
static void release_items(const t_jlist *list, void **items, long count) {
    if (!holds_texts(list))
        std::for_each(items, items + count, destroy_image);
}

// The functions from here to the next heading are called with the region held.

static long rows_with_data(const t_jlist *list) { return list->items ? list->row_count : 0; }

static bool has_row(const t_jlist *list, long row) { return row >= 1 && row <= rows_with_data(list); }

static long clamp_row(const t_jlist *list, long row) {
    return std::max(std::min(row, list->row_count), 1L); // in this order: 1 in a list without rows
}

// A list being built or taken down has no view.
static void redraw_row(const t_jlist *list, t_symbol *column, long row) {
    if (list->dataview)
        jdataview_redrawcell(list->dataview, column, (t_rowref)(t_ptr_int)row);
}

static void select_row(const t_jlist *list, long row) {
    if (list->dataview)
        jdataview_selectcell(list->dataview, list->column_name, (t_rowref)(t_ptr_int)row);
}

static void clear_view(const t_jlist *list) {
    if (list->dataview)
        jdataview_clear(list->dataview);
}

static void fill_view(const t_jlist *list, const row_arrays &arrays) {
    if (list->dataview)
        jdataview_addrows(list->dataview, arrays.count, arrays.ids.get());
}

// The array that the list had is left in `arrays`, so that it is freed after the region.
static void install_rows(t_jlist *list, row_arrays &arrays) {
    void **superseded = list->items;
    list->items = arrays.items.release();
    list->row_count = arrays.count;
    arrays.items.reset(superseded);
}

// For a caller that does not hold the region.
static long count_rows(const t_jlist *list) {
    critical_section hold;
    return rows_with_data(list);
}

// ---- life

t_jlist *jlist_new(t_object *owner, t_symbol *column_name, long file_type) {
    t_jlist *list = (t_jlist *)sysmem_newptr(sizeof(t_jlist));
    if (!list)
        return nullptr;
    *list = {};
    list->owner = owner;
    list->column_name = column_name;
    list->file_type = file_type;
    list->frame = 1;
    jrgba_set(&list->select_color, 0.05, 0.91, 0.91, 0.3);
    return list;
}

void jlist_free(t_jlist *list) {
    if (!list)
        return;
    jlist_clear(list);
    object_free(list->dataview);
    sysmem_freeptr(list);
}

// ---- what is in the list

long jlist_hasdata(t_jlist *list) {
    critical_section hold;
    return list->items != nullptr;
}

long jlist_numrows(t_jlist *list) {
    critical_section hold;
    return list->row_count;
}

long jlist_currow(t_jlist *list) {
    critical_section hold;
    return list->current_row;
}

void *jlist_getdata(t_jlist *list, long row) {
    critical_section hold;
    return has_row(list, row) ? list->items[row - 1] : nullptr;
}

void *jlist_bang(t_jlist *list) {
    critical_section hold;
    if (!has_row(list, list->current_row))
        return nullptr;
    list->selected_row = list->current_row;
    return list->items[list->current_row - 1];
}

// ---- moving

void jlist_int(t_jlist *list, long row) {
    critical_section hold;
    if (!list->items)
        return;
    const long previous = list->current_row;
    list->current_row = list->selected_row = clamp_row(list, row);
    if (list->current_row != previous)
        redraw_row(list, list->column_name, previous);
    select_row(list, list->selected_row);
}

void jlist_set(t_jlist *list, long row) {
    critical_section hold;
    if (!list->items)
        return;
    row = clamp_row(list, row);
    if (row == list->current_row)
        return;
    list->selected_row = 0;
    select_row(list, 0);
    list->current_row = row;
    redraw_row(list, list->column_name, list->current_row);
}

void jlist_next(t_jlist *list) {
    critical_section hold;
    jlist_int(list, list->current_row + 1);
}

void jlist_previous(t_jlist *list) {
    critical_section hold;
    jlist_int(list, list->current_row - 1);
}

void jlist_home(t_jlist *list) { jlist_int(list, 1); }

void jlist_end(t_jlist *list) {
    critical_section hold;
    jlist_int(list, list->row_count);
}

void jlist_selected(t_jlist *list, t_symbol *column, long row) {
    critical_section hold;
    const long previous = list->current_row;
    list->current_row = list->selected_row = row;
    if (list->current_row != previous)
        redraw_row(list, column, previous);
}

// ---- editing

void jlist_clear(t_jlist *list) {
    critical_section hold;
    clear_view(list);
    release_items(list, list->items, rows_with_data(list));
    std::free(list->items);
    list->items = nullptr;
    list->row_count = 0;
    list->selected_row = list->current_row = 0;
}

// The 0-based row of a position; below the list they are all -1, so that nothing overflows.
static long index_of_position(t_atom_long position) {
    return (long)std::clamp<t_atom_long>(position, 0, std::numeric_limits<long>::max()) - 1;
}

static void choose_slot(t_jlist *list, t_symbol *mode, t_atom_long position) {
    if (!list->items) {
        list->row_count = list->edit_index = 0;
        list->replace_mode = 0;
    }
    if (mode == gensym("append")) {
        list->edit_index = list->row_count;
        list->replace_mode = 0;
    } else if (mode == gensym("insert")) {
        list->edit_index = index_of_position(position);
        list->replace_mode = 0;
    } else if (mode == gensym("replace")) {
        list->edit_index = index_of_position(position);
        list->replace_mode = 1;
    }
}

static edit_result replace_item(t_jlist *list, void *item) {
    const long row = list->edit_index + 1;
    const bool found = has_row(list, row);
    if (found || !list->items)
        list->current_row = 0; // the redraw goes to row 0 (docs/compatibility.md)
    if (!found)
        return edit_result::no_such_row;
    void *&slot = list->items[row - 1];
    if (slot != item)
        release_items(list, &slot, 1);
    slot = item;
    jlist_int(list, row);
    return edit_result::done;
}

static edit_result insert_item(t_jlist *list, void *item, row_arrays &arrays) {
    if (!fit_row_arrays(arrays, list->row_count + 1))
        return edit_result::no_memory;
    list->edit_index = std::clamp(list->edit_index, 0L, list->row_count);
    void **behind = std::copy_n(list->items, list->edit_index, arrays.items.get());
    *behind = item;
    std::copy_n(list->items + list->edit_index, list->row_count - list->edit_index, behind + 1);
    clear_view(list);
    fill_view(list, arrays);
    install_rows(list, arrays);
    jlist_int(list, list->edit_index + 1);
    return edit_result::done;
}

static edit_result edit_rows(t_jlist *list, t_symbol *mode, void *item, t_atom_long position) {
    row_arrays arrays;
    if (mode != gensym("replace"))
        arrays = make_row_arrays(count_rows(list) + 1);
    critical_section hold;
    choose_slot(list, mode, position);
    return list->replace_mode ? replace_item(list, item) : insert_item(list, item, arrays);
}

void jlist_append(t_jlist *list, t_symbol *mode, void *item, short argc, t_atom *argv) {
    const edit_result result = edit_rows(list, mode, item, argc > 1 ? atom_getlong(argv + 1) : 0);
    if (result != edit_result::done)
        release_items(list, &item, 1);
    if (result == edit_result::no_memory)
        object_error(list->owner, "out of memory: the item is not added");
}

void jlist_setdelete(t_jlist *list, long index) {
    critical_section hold;
    list->delete_index = index;
}

static edit_result delete_item(t_jlist *list, row_arrays &arrays) {
    const long index = list->delete_index, rows = rows_with_data(list);
    if (rows < 2)
        return edit_result::too_few_rows;
    if (index < 0 || index >= rows)
        return edit_result::no_such_row;
    if (!fit_row_arrays(arrays, rows - 1))
        return edit_result::no_memory;
    void **rest = std::copy_n(list->items, index, arrays.items.get());
    std::copy_n(list->items + index + 1, rows - 1 - index, rest);
    clear_view(list);
    fill_view(list, arrays);
    release_items(list, list->items + index, 1);
    install_rows(list, arrays);
    jlist_int(list, index + 1);
    return edit_result::done;
}

short jlist_delete(t_jlist *list) {
    row_arrays arrays = make_row_arrays(std::max(count_rows(list) - 1, 0L));
    edit_result result;
    {
        critical_section hold;
        result = delete_item(list, arrays);
    }
    if (result == edit_result::no_memory)
        object_error(list->owner, "out of memory: the item is not deleted");
    if (result == edit_result::too_few_rows)
        return JLIST_TOO_FEW_ROWS;
    return result == edit_result::done ? JLIST_DELETED : JLIST_NOT_DELETED;
}

// ---- the view

// Truncated toward zero. What a damaged patcher holds instead of a measure is bounded: its cast would be undefined.
static long whole_pixels(double measure) {
    using limits = std::numeric_limits<int>;
    return std::isnan(measure) ? 0 : (long)std::clamp<double>(measure, limits::min(), limits::max());
}

static long row_height(double font_size) { return whole_pixels(font_size * 1.2); }

// The scroll bar takes the other 16 pixels.
static long column_width(t_object *box) {
    t_rect rect = {};
    jbox_get_patching_rect(box, &rect);
    return whole_pixels(rect.width - 16.0);
}

void jlist_initdataview(t_object *box, t_jlist *list, double font_size) {
    t_object *view = (t_object *)jdataview_new();
    if (!view)
        return;
    jdataview_setclient(view, box);
    jdataview_setborderthickness(view, list->frame);
    jdataview_setscrollvisible(view, 1, 0);
    jdataview_setheight(view, row_height(font_size));
    jdataview_setautosizerightcolumn(view, 1);
    jdataview_setdragenabled(view, 0);
    t_object *column = jdataview_addcolumn(view, list->column_name, nullptr, 1);
    if (!column) {
        object_free(view);
        return;
    }
    jcolumn_setwidth(column, column_width(box));
    jcolumn_setmaxwidth(column, column_width(box));
    jdataview_setcolumnheaderheight(view, 0.0);
    jcolumn_setcustompaint(column, gensym("custompaintcell"));
    ((t_jcolumn *)column)->c_selectable = 1; // has no setter
    list->dataview = view;
}

long jlist_hasdataview(t_jlist *list) { return list->dataview != nullptr; }

void jlist_setfontname(t_jlist *list, t_symbol *name) {
    if (list->dataview)
        jdataview_setfontname(list->dataview, name);
}

void jlist_setfontsize(t_jlist *list, double size) {
    if (!list->dataview)
        return;
    jdataview_setfontsize(list->dataview, size);
    jdataview_setheight(list->dataview, row_height(size));
}

void jlist_setcellv(t_jlist *list, double height) {
    if (list->dataview)
        jdataview_setheight(list->dataview, whole_pixels(height));
}

void jlist_newpatcherview(t_jlist *list, t_object *patcherview) {
    if (list->dataview)
        jdataview_patchervis(list->dataview, patcherview, list->owner);
}

void jlist_freepatcherview(t_jlist *list, t_object *patcherview) {
    if (list->dataview)
        jdataview_patcherinvis(list->dataview, patcherview);
}

// Whether the row is highlighted, and in which colour. The current row is, not the selected one: "set" selects none.
static bool is_highlighted(t_jlist *list, long row, t_jrgba *colour) {
    critical_section hold;
    *colour = list->select_color;
    return row == list->current_row && has_row(list, row);
}

void jlist_custompaintcell(t_jlist *list, t_object *patcherview, t_symbol *column, long row, double width,
                           double height, char selected) {
    t_jgraphics *g = (t_jgraphics *)patcherview_get_jgraphics(patcherview);
    if (!g)
        return;
    const auto paint_item = holds_texts(list) ? jlist_custompaint_gensym_cell : jlist_custompaint_surface_cell;
    paint_item(list, g, column, row, width, height, selected);
    t_jrgba colour;
    if (!is_highlighted(list, row, &colour))
        return;
    jgraphics_rectangle(g, 0.0, 0.0, width, height);
    jgraphics_set_source_jrgba(g, &colour);
    jgraphics_fill(g);
}

void jlist_custompaint_gensym_cell(t_jlist *list, t_jgraphics *g, t_symbol *, long row, double, double, char) {
    const t_symbol *item = (const t_symbol *)jlist_getdata(list, row);
    if (!item)
        return;
    const double size = jbox_get_fontsize(list->owner);
    const t_symbol *face = jbox_get_fontname(list->owner);
    char text[2048];
    vrk_copy_whole_characters(text, sizeof(text), item->s_name);
    t_jrgba black;
    jrgba_set(&black, 0.0, 0.0, 0.0, 1.0);
    jgraphics_set_source_jrgba(g, &black);
    jgraphics_select_font_face(g, face->s_name, JGRAPHICS_FONT_SLANT_NORMAL, JGRAPHICS_FONT_WEIGHT_NORMAL);
    jgraphics_set_font_size(g, size);
    jgraphics_move_to(g, 2.0, size);
    jgraphics_show_text(g, text);
}

image_surface jlist_share_image(t_jlist *list, long row) {
    critical_section hold;
    t_jsurface *image = (t_jsurface *)jlist_getdata(list, row);
    return image_surface(image ? jgraphics_surface_reference(image) : nullptr);
}

void jlist_custompaint_surface_cell(t_jlist *list, t_jgraphics *g, t_symbol *, long row, double width, double height,
                                    char) {
    const image_surface image = jlist_share_image(list, row);
    if (!image)
        return;
    const double w = jgraphics_image_surface_get_width(image.get()),
                 h = jgraphics_image_surface_get_height(image.get());
    jgraphics_image_surface_draw(g, image.get(), {0.0, 0.0, w, h}, {(width - w) / 2.0, (height - h) / 2.0, w, h});
}

// ---- attribute accessors; a patch may set them on the scheduler thread while a cell is painted

t_max_err jlist_getframe(t_jlist *list, void *attr, long *argc, t_atom **argv) {
    critical_section hold;
    return jattributes_getlong(list->frame, attr, argc, argv);
}

t_max_err jlist_frame(t_jlist *list, void *attr, long argc, t_atom *argv) {
    critical_section hold;
    return jattributes_short(&list->frame, attr, argc, argv);
}

t_max_err jlist_getselectcolor(t_jlist *list, void *attr, long *argc, t_atom **argv) {
    critical_section hold;
    return jattributes_getjrgba(&list->select_color, attr, argc, argv);
}

t_max_err jlist_selectcolor(t_jlist *list, void *attr, long argc, t_atom *argv) {
    critical_section hold;
    return jattributes_jrgba(&list->select_color, attr, argc, argv);
}

// ---- reading

// The longest file name that is looked up, in bytes.
static constexpr size_t longest_name = 2048;
static_assert(longest_name + 1 > MAX_PATH_CHARS, "the host finds room for a path where a name stood");

static bool load_document(const t_jlist *list, t_jxmlfile *holder, const t_symbol *filename) {
    if (std::strlen(filename->s_name) > longest_name) {
        object_error(list->owner, "path %s too long", filename->s_name);
        return false;
    }
    char name[longest_name + 1];
    strncpy_zero(name, filename->s_name, sizeof(name));
    short path_id = 0;
    t_fourcc type = 0;
    if (locatefile_extended(name, &path_id, &type, nullptr, 0)) {
        object_error(list->owner, "can't find %s", filename->s_name);
        return false;
    }
    if (!holder || !jxmlfile_load(holder, name, path_id)) {
        object_error(list->owner, "%s is not an appropriate xml file", filename->s_name);
        return false;
    }
    return true;
}

// Where the resources are: three words name all of the type, with the filter on the number it is one.
static constexpr long type_words = 3, resource_words = 6;

static void set_resource_path(t_atom *path, const t_jxmlfile *holder) {
    critical_section hold; // a patch may set the names on the scheduler thread
    atom_setsym(path, holder->root);
    atom_setsym(path + 1, holder->xmlpath[0]);
    atom_setsym(path + 2, holder->xmlpath[1]);
    atom_setsym(path + 3, gensym("attr"));
    atom_setsym(path + 4, gensym("number"));
    atom_setlong(path + 5, 0);
}

// The text ends at the first zero byte. Null when memory runs out.
static t_symbol *make_text(std::string_view bytes) {
    const host_block<char> text(sysmem_newptrclear(bytes.size() + 1));
    if (!text)
        return nullptr;
    std::copy_n(bytes.data(), bytes.size(), text.get());
    return gensym(text.get());
}

// Bytes that are no image make a row without one.
static t_jsurface *make_image(std::string_view bytes) {
    return bytes.empty() ? nullptr : jgraphics_image_surface_create_from_filedata(bytes.data(), bytes.size());
}

static bool make_item(const t_jlist *list, std::string_view bytes, long number, void **item) {
    const bool texts = holds_texts(list);
    *item = texts ? (void *)make_text(bytes) : (void *)make_image(bytes);
    if (*item || !texts)
        return true;
    object_error(list->owner, "out of memory: resource %ld is not read", number);
    return false;
}

static bool read_item(const t_jlist *list, t_jxmlfile *holder, t_atom *path, long number, void **item) {
    t_symbol *type = atom_getsym(path + 2);
    t_atom value;
    atom_setlong(&value, 0);
    t_atom *result = &value;
    short count = 1; // of the room for atoms, then of the atoms
    atom_setlong(path + 5, number);
    if (jxmlfile_get(holder, resource_words, path, type, &count, &result, 1)) {
        object_error(list->owner, "cannot find %s resource %ld", type->s_name, number);
        return false;
    }
    const long kind = atom_gettype(&value);
    if (kind == A_OBJ) {
        const host_block<char> block((char *)atom_getobj(&value));
        return make_item(list, {block.get(), (size_t)sysmem_ptrsize(block.get())}, number, item);
    }
    if (kind == A_SYM && holds_texts(list)) {
        *item = atom_getsym(&value);
        return true;
    }
    if (kind == A_SYM)
        return make_item(list, atom_getsym(&value)->s_name, number, item);
    object_error(list->owner, "resource %ld is not of proper type", number);
    return false;
}

static bool read_items(const t_jlist *list, t_jxmlfile *holder, t_atom *path, row_arrays &arrays) {
    for (long i = 0; i < arrays.count; i++) {
        if (!read_item(list, holder, path, i, &arrays.items[i])) {
            release_items(list, arrays.items.get(), i);
            return false;
        }
    }
    return true;
}

// The number counted stands in the list from here on, also when the reading gives up.
static row_arrays announce_rows(t_jlist *list, long count) {
    {
        critical_section hold;
        list->row_count = count;
    }
    row_arrays arrays = make_row_arrays(count);
    if (!arrays)
        object_error(list->owner, "out of memory: %ld resources are not read", count);
    return arrays;
}

static void show_loaded_rows(t_jlist *list, row_arrays &arrays) {
    critical_section hold;
    install_rows(list, arrays);
    fill_view(list, arrays);
    jlist_int(list, 1);
}

// Texts are trimmed as bytes, which takes letters outside of ASCII at their ends.
static void report_texts_cut(const t_jlist *list, long count) {
    if (count > 0)
        object_warn(list->owner,
                    "texts that lost letters outside of ASCII at their ends: %ld (a CDATA section keeps them)", count);
}

short jlist_load_from_xml(t_jlist *list, t_jxmlfile *holder, t_symbol *filename) {
    if (!filename || !load_document(list, holder, filename))
        return 0;
    jlist_clear(list);
    t_atom path[resource_words];
    set_resource_path(path, holder);
    long count = 0;
    if (jxmlfile_count_all(holder, type_words, path, &count) || count > SHRT_MAX) {
        object_error(list->owner, "cannot count resources of type %s%s", atom_getsym(path + 2)->s_name,
                     count > SHRT_MAX ? " (more than 32767)" : "");
        return 0;
    }
    row_arrays arrays = announce_rows(list, count);
    const long texts_cut_before = holder->texts_cut;
    if (!arrays || !read_items(list, holder, path, arrays))
        return 0;
    report_texts_cut(list, holder->texts_cut - texts_cut_before);
    show_loaded_rows(list, arrays);
    return 1;
}
