// A test of the list itself.
#include "support/jlist-test.h"

using namespace maxhost;

void JlistTest::load_no_rows() {
    write_file("none.xml", "<?xml version=\"1.0\"?><resourcefile/>");
    t_jxmlfile *holder = jxmlfile_new(owner);
    EXPECT_EQ(jlist_load_from_xml(list, holder, gensym("none.xml")), 1);
    jxmlfile_free(holder);
}

void JlistTest::show_row_that_is_gone(t_ptr_int row) {
    auto id = reinterpret_cast<t_rowref>(row);
    jdataview_addrows(list->dataview, 1, &id);
}

std::string JlistTest::attribute(t_max_err (*getter)(t_jlist *, void *, long *, t_atom **)) {
    long count = 0;
    t_atom *atoms = nullptr;
    EXPECT_EQ(getter(list, nullptr, &count, &atoms), 0);
    const std::string text = print_atoms({atoms, static_cast<size_t>(count)});
    sysmem_freeptr(atoms);
    return text;
}

t_max_err JlistTest::set_attribute(t_max_err (*setter)(t_jlist *, void *, long, t_atom *), const char *value) {
    std::vector<t_atom> atoms = parse_atoms(value);
    return setter(list, nullptr, static_cast<long>(atoms.size()), atoms.data());
}

void JlistImageTest::SetUp() {
    JlistTest::SetUp();
    use_images();
    objects_before_ = memory_in_use().objects;
}

std::vector<void *> JlistImageTest::fill_with_images() {
    for (int i = 0; i < 3; ++i)
        append_item(image_from("two-by-one.png"));
    EXPECT_EQ(images_alive(), 3u);
    return items();
}

std::string colour_text(const t_jrgba &colour) {
    return print_float(colour.red) + " " + print_float(colour.green) + " " + print_float(colour.blue) + " " +
           print_float(colour.alpha);
}
