// The class of the list box: entry functions, method and attribute tables, the life of a box, old argument lists.
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <limits>

#include "vrk.tessaroll.h"

#include "jgraphics.h"

t_class *tessaroll_class;
t_symbol *bindMeBaby;
t_symbol *mycolumname;

static const char class_name[] = "vrk.tessaroll";

// ---- messages

namespace {

struct message_row {
    const char *name;
    method handler;
    int codes[2]; // of the arguments
};

} // namespace

static const message_row message_table[] = {
    {"stdargs", (method)tessaroll_stdargs, {A_CANT}},
    {"custompaintcell", (method)tessaroll_custompaintcell, {A_CANT}},
    {"newpatcherview", (method)tessaroll_newpatcherview, {A_CANT}},
    {"freepatcherview", (method)tessaroll_freepatcherview, {A_CANT}},
    {"selected", (method)tessaroll_selected, {A_CANT}},
    {"notify", (method)tessaroll_notify, {A_CANT}},
    {"assist", (method)tessaroll_assist, {A_CANT}},
    {"jsave", (method)tessaroll_save, {A_CANT}},
    {"bang", (method)tessaroll_bang, {}},
    {"int", (method)tessaroll_int, {A_LONG}},
    {"set", (method)tessaroll_set, {A_LONG}},
    {"append", (method)tessaroll_append, {A_SYM}},
    {"insert", (method)tessaroll_insert, {A_LONG, A_SYM}},
    {"replace", (method)tessaroll_replace, {A_LONG, A_SYM}},
    {"delete", (method)tessaroll_delete, {A_LONG}},
    {"read", (method)tessaroll_read, {A_SYM}},
    {"write", (method)tessaroll_write, {A_GIMME}},
    {"next", (method)tessaroll_next, {}},
    {"previous", (method)tessaroll_previous, {}},
    {"home", (method)tessaroll_home, {}},
    {"end", (method)tessaroll_end, {}},
    {"length", (method)tessaroll_length, {}},
    {"dump", (method)tessaroll_dump, {}},
    {"erase", (method)tessaroll_erase, {}},
    {"clear", (method)tessaroll_clear, {}},
    {"restore", (method)tessaroll_restore, {A_LONG, A_LONG}},
    {"restoreitem", (method)tessaroll_restoreitem, {A_SYM}},
    {"restoreitems", (method)tessaroll_restoreitems, {A_GIMME}},
    {"done", (method)tessaroll_done, {}},
};

static void add_message(t_class *c, const message_row &row) {
    class_addmethod(c, row.handler, row.name, row.codes[0], row.codes[1], 0); // ends at the first 0
}

// ---- attributes

namespace {

// An attribute of an attribute. Without a type it has that of the attribute itself.
struct property_row {
    const char *name;
    const char *type;
    const char *value;
};

struct accessor_row {
    method get;
    method set;
};

// An attribute. Without elements it is no array. Without an offset it has no place in the record; then its accessors
// know where the value is. Stock accessors are in force until those are set.
struct attribute_row {
    const char *name;
    const char *type;
    long elements;
    size_t offset;
    property_row properties[4];
    const accessor_row *stock_accessors;
    const accessor_row *accessors;
};

} // namespace

static constexpr property_row saved = {"save", "long", "1"};
static constexpr property_row painted = {"paint", "long", "1"};
static constexpr property_row switched = {"style", "symbol", "onoff"};
static constexpr property_row coloured = {"style", "symbol", "rgba"};
static constexpr property_row among_colours = {"category", "symbol", "Color"};
static constexpr property_row among_files = {"category", "symbol", "Resourcefile"};
static constexpr property_row default_root = {"default", nullptr, "resourcefile"};
static constexpr property_row default_xmlpath = {"default", nullptr, "resource string"}; // a new holder's is another
static constexpr property_row default_rect = {"default", nullptr, "0. 0. 120. 90."};

static const accessor_row frame = {(method)tessaroll_getframe, (method)tessaroll_frame};
static const accessor_row stock_colour = {nullptr, (method)jgraphics_attr_setrgba};
static const accessor_row select_colour = {(method)tessaroll_getselectcolor, (method)tessaroll_selectcolor};
static const accessor_row root = {(method)tessaroll_getroot, (method)tessaroll_root};
static const accessor_row xmlpath = {(method)tessaroll_getxmlpath, (method)tessaroll_xmlpath};

static const attribute_row attribute_table[] = {
    {"cellh", "long", 0, offsetof(t_tessaroll, cellh), {saved, painted}, nullptr, nullptr},
    {"cellv", "long", 0, offsetof(t_tessaroll, cellv), {saved, painted}, nullptr, nullptr},
    {"frame", "long", 0, 0, {saved, painted}, nullptr, &frame},
    {"embed", "char", 0, offsetof(t_tessaroll, embed), {saved, switched}, nullptr, nullptr},
    {"selectcolor", "float64", 4, 0, {painted, saved, coloured, among_colours}, &stock_colour, &select_colour},
    {"root", "symbol", 0, 0, {saved, among_files, default_root}, nullptr, &root},
    {"xmlpath", "symbol", 2, 0, {saved, among_files, default_xmlpath}, nullptr, &xmlpath},
};

static t_object *make_attribute(const attribute_row &row) {
    t_symbol *type = gensym(row.type);
    if (row.elements)
        return attr_offset_array_new(row.name, type, row.elements, ATTR_FLAGS_NONE, nullptr, nullptr, 0,
                                     (long)row.offset);
    return attr_offset_new(row.name, type, ATTR_FLAGS_NONE, nullptr, nullptr, (long)row.offset);
}

static void set_accessors(t_class *c, const char *attribute_name, const accessor_row *row) {
    t_object *attribute = row ? (t_object *)class_attr_get(c, gensym(attribute_name)) : nullptr;
    if (!attribute)
        return;
    object_method(attribute, gensym("setmethod"), gensym("get"), row->get);
    object_method(attribute, gensym("setmethod"), gensym("set"), row->set);
}

static void add_property(t_class *c, const char *attribute_name, const property_row &row) {
    t_object *attribute = (t_object *)class_attr_get(c, gensym(attribute_name));
    if (!attribute)
        return;
    t_symbol *type = row.type ? gensym(row.type) : (t_symbol *)object_method(attribute, gensym("gettype"));
    class_attr_addattr_parse(c, attribute_name, row.name, type, ATTR_FLAGS_NONE, row.value);
}

static void add_attribute(t_class *c, const attribute_row &row) {
    t_object *attribute = make_attribute(row);
    if (!attribute || class_addattr(c, attribute))
        return;
    set_accessors(c, row.name, row.stock_accessors);
    for (const property_row &property : row.properties)
        if (property.name)
            add_property(c, row.name, property);
    set_accessors(c, row.name, row.accessors);
}

// ---- entry

static void tessaroll_register() {
    common_symbols_init();
    t_class *c = class_new(class_name, (method)tessaroll_new, (method)tessaroll_free, (long)sizeof(t_tessaroll),
                           nullptr, A_GIMME, 0);
    if (!c)
        return;
    c->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    jbox_initclass(c, JBOX_COLOR | JBOX_FONTATTR | JBOX_FIXWIDTH);
    for (const message_row &row : message_table)
        add_message(c, row);
    for (const attribute_row &row : attribute_table)
        add_attribute(c, row);
    add_property(c, "patching_rect", default_rect);
    if (class_register(CLASS_BOX, c))
        return;
    tessaroll_class = c;
    bindMeBaby = gensym("#X");
    mycolumname = gensym(class_name);
    alias(const_cast<char *>("tessaroll"));
}

// Hosts since 6.1.9 call the first, older ones the second; none calls both. On Windows the C runtime has a main of its
// own.
extern "C" C74_EXPORT void ext_main(void *) { tessaroll_register(); }

#ifndef _WIN32
C74_EXPORT int main(void) {
    tessaroll_register();
    return 0;
}
#endif

// ---- the life of a box

// The box that "#X" was bound to last, and whether it is alive: freeing it leaves the binding. Main thread.
static t_object *bound_last;
static bool bound_last_lives;

static void note_bound(t_object *box) {
    bound_last = box;
    bound_last_lives = true;
}

t_object *tessaroll_bind(t_object *box) {
#ifdef __cpp_lib_atomic_ref
    return std::atomic_ref(bindMeBaby->s_thing).exchange(box);
#else // libc++ before its version 19
    return __atomic_exchange_n(&bindMeBaby->s_thing, box, __ATOMIC_SEQ_CST);
#endif
}

// Binds "#X" to a new box. The result is the living object that it was bound to, or null.
static t_object *take_binding(t_object *box) {
    t_object *const superseded = tessaroll_bind(box);
    const bool is_freed = superseded == bound_last && !bound_last_lives;
    note_bound(box);
    return is_freed ? nullptr : superseded;
}

// The parts that are the box's own.
static bool make_parts(t_tessaroll *box) {
    t_object *owner = (t_object *)box;
    box->read_qelem = qelem_new(box, (method)tessaroll_doread);
    box->delete_qelem = qelem_new(box, (method)tessaroll_dodelete);
    box->read_name = nullptr;
    box->default_size = 9.0;
    box->jlist = jlist_new(owner, mycolumname, JLIST_FILE_TYPE);
    return box->read_qelem && box->delete_qelem && box->jlist;
}

// The parts that are the host's. b_firstin tells from here on that there is a host box.
static bool make_box(t_tessaroll *box, long argc, t_atom *argv) {
    const long flags = JBOX_DRAWFIRSTIN | JBOX_NODRAWBOX | JBOX_DRAWINLAST | JBOX_GROWBOTH;
    if (jbox_new(&box->box, flags, argc, argv))
        return false;
    box->box.b_firstin = (t_object *)box;
    box->item_outlet = outlet_new(box, nullptr); // outlets come from right to left
    box->count_outlet = intout(box);
    box->index_outlet = intout(box);
    return box->item_outlet && box->count_outlet && box->index_outlet;
}

static bool make_contents(t_tessaroll *box, t_dictionary *dictionary) {
    long count = 0;
    t_atom *items = nullptr;
    const t_max_err error = dictionary_getatoms(dictionary, gensym("restoreitems"), &count, &items);
    if (error == MAX_ERR_OUT_OF_MEM)
        return false; // rather no box than one that has lost its items
    if (!error) {
        tessaroll_done(box);
        tessaroll_deferrestore(box, count, items);
    }
    jlist_initdataview((t_object *)box, box->jlist, jbox_get_fontsize((t_object *)box));
    return jlist_hasdataview(box->jlist);
}

// Takes a box down that could not be finished, and gives "#X" back to whom it was bound to: a box that is not there
// ends nobody's restoring.
static void discard(t_tessaroll *box, t_object *superseded) {
    tessaroll_bind(superseded);
    note_bound(superseded);
    object_free(box);
}

void *tessaroll_new(t_symbol *, long argc, t_atom *argv) {
    t_dictionary *dictionary = object_dictionaryarg(argc, argv);
    t_tessaroll *box = dictionary ? (t_tessaroll *)object_alloc(tessaroll_class) : nullptr;
    if (!box)
        return nullptr;
    box->xmlfile = jxmlfile_new((t_object *)box); // without it the box works, but cannot read
    t_object *const superseded = take_binding((t_object *)box);
    if (!make_parts(box) || !make_box(box, argc, argv) || !make_contents(box, dictionary)) {
        discard(box, superseded);
        return nullptr;
    }
    attr_dictionary_process(box, dictionary);
    jbox_ready(&box->box);
    return box;
}

// Also of a box that is only half made. A binding of "#X" stays (docs/compatibility.md).
void tessaroll_free(t_tessaroll *box) {
    if (bound_last == (t_object *)box)
        bound_last_lives = false;
    if (box->box.b_firstin)
        jbox_free(&box->box);
    if (box->xmlfile)
        jxmlfile_free(box->xmlfile);
    jlist_free(box->jlist);
    if (box->read_qelem)
        qelem_free(box->read_qelem);
    if (box->delete_qelem)
        qelem_free(box->delete_qelem);
}

// ---- old argument lists

long tessaroll_stdargs(t_dictionary *dictionary, t_symbol *, long argc, t_atom *argv) {
    if (!dictionary || argc < 6 || !argv)
        return 0;
    t_atom rect[4], cellh, cellv;
    for (int i = 0; i < 4; i++)
        atom_setlong(rect + i, atom_getlong(argv + i));
    // The cells are at least as wide as the box without its scroll bar; no width is too small to take 15 away.
    const t_atom_long width = std::max(atom_getlong(argv + 2), std::numeric_limits<t_atom_long>::min() + 15);
    atom_setlong(&cellh, std::max(atom_getlong(argv + 4), width - 15));
    atom_setlong(&cellv, atom_getlong(argv + 5));
    dictionary_appendatoms(dictionary, gensym("patching_rect"), 4, rect);
    dictionary_appendatoms(dictionary, gensym("cellh"), 1, &cellh);
    dictionary_appendatoms(dictionary, gensym("cellv"), 1, &cellv);
    return 0;
}
