// A test with a list and a box that shows it.
#include "support/list-test.h"

#include "ext.h"

using namespace maxhost;

namespace {

struct ListOwner {
    t_jbox box;
    t_jlist *list; // the test's
};

t_class *owner_class;

void owner_paint(ListOwner *x, t_object *view, t_symbol *column, t_rowref row, int width, int height, int selected) {
    jlist_custompaintcell(x->list, view, column, static_cast<long>(reinterpret_cast<t_ptr_int>(row)), width, height,
                          static_cast<char>(selected));
}

void owner_selected(ListOwner *x, t_symbol *column, t_rowref row) {
    jlist_selected(x->list, column, static_cast<long>(reinterpret_cast<t_ptr_int>(row)));
}

void *owner_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = static_cast<ListOwner *>(object_alloc(owner_class));
    jbox_new(&x->box, 0, argc, argv);
    x->box.b_firstin = &x->box.b_ob;
    jbox_ready(&x->box);
    return x;
}

void owner_free(ListOwner *x) { jbox_free(&x->box); }

void register_owner() {
    owner_class =
        class_new("list-owner", (method)owner_new, (method)owner_free, sizeof(ListOwner), nullptr, A_GIMME, 0);
    owner_class->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    jbox_initclass(owner_class, JBOX_FONTATTR);
    class_addmethod(owner_class, (method)owner_paint, "custompaintcell", A_CANT, 0);
    class_addmethod(owner_class, (method)owner_selected, "selected", A_CANT, 0);
    class_register(CLASS_BOX, owner_class);
}

void enter(t_dictionary *dictionary, const char *key, const char *value) {
    std::vector<t_atom> atoms = parse_atoms(value);
    dictionary_appendatoms(dictionary, gensym(key), static_cast<long>(atoms.size()), atoms.data());
}

} // namespace

void ListTest::SetUp() {
    HostTest::SetUp();
    if (!owner_class)
        register_owner();
    patcher = new_patcher();
    const OwnedDictionary dictionary = empty_dictionary();
    enter(dictionary.get(), "varname", "owner");
    enter(dictionary.get(), "patching_rect", "0. 0. 120. 90.");
    enter(dictionary.get(), "fontsize", "9.");
    owner = new_box(patcher, gensym("list-owner"), dictionary.get());
    use_texts();
}

void ListTest::TearDown() {
    jlist_free(list);
    free_patcher(patcher);
    HostTest::TearDown();
}

void ListTest::use_list(const char *column_name) {
    jlist_free(list);
    list = jlist_new(owner, gensym(column_name), JLIST_FILE_TYPE);
    reinterpret_cast<ListOwner *>(owner)->list = list;
    jlist_initdataview(owner, list, 9);
}

void ListTest::fill(const Lines &texts) {
    jlist_clear(list);
    for (const std::string &text : texts)
        append(text.c_str());
    take_lines();
}

void ListTest::append_item(void *item) {
    t_atom argument;
    atom_setsym(&argument, gensym("not looked at"));
    jlist_append(list, gensym("append"), item, 1, &argument);
}

void ListTest::edit(const char *mode, t_atom_long position, void *item) {
    t_atom arguments[2];
    atom_setsym(arguments, gensym("not looked at"));
    atom_setlong(arguments + 1, position);
    jlist_append(list, gensym(mode), item, 2, arguments);
}

short ListTest::remove(long row) {
    jlist_setdelete(list, row - 1);
    return jlist_delete(list);
}

std::vector<void *> ListTest::items() {
    std::vector<void *> all;
    for (long row = 1; jlist_hasdata(list) && row <= jlist_numrows(list); ++row)
        all.push_back(jlist_getdata(list, row));
    return all;
}

Lines ListTest::texts() {
    Lines all;
    for (void *item : items())
        all.emplace_back(static_cast<t_symbol *>(item)->s_name);
    return all;
}

std::string ListTest::current_text() {
    const auto *item = static_cast<t_symbol *>(jlist_getdata(list, jlist_currow(list)));
    return item ? item->s_name : "-";
}

std::string ListTest::rows() {
    return "current " + std::to_string(list->current_row) + ", selected " + std::to_string(list->selected_row) +
           " of " + std::to_string(list->row_count);
}

ViewState ListTest::view() {
    ViewState state{};
    EXPECT_TRUE(data_view_state(owner, state));
    return state;
}

t_jsurface *ListTest::image_from(const char *file) {
    const std::string bytes = read_file(std::string(TEST_DATA_DIR "/") + file);
    return jgraphics_image_surface_create_from_filedata(bytes.data(), bytes.size());
}
