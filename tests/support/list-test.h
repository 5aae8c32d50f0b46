// A test with a list and a box that shows it.
#pragma once

#include "support/host-test.h"
#include "vrk.jlist.h"

// The box is called "owner", is 120 by 90 pixels and has a font of 9 points; it hands its data view's painting and
// clicks on to the list. The list is one of texts until a test asks for one of images.
class ListTest : public HostTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Puts an empty list with a view in place of the one that was there.
    void use_list(const char *column_name);
    void use_texts() { use_list("vrk.tessaroll"); }
    void use_images() { use_list("pictures"); }

    // A list with these rows; what the view was told is forgotten.
    void fill(const Lines &texts);

    // The three edits, as the box asks for them.
    void append(const char *text) { append_item(gensym(text)); }
    void append_item(void *item);
    void edit(const char *mode, t_atom_long position, void *item);
    void insert(t_atom_long position, const char *text) { edit("insert", position, gensym(text)); }
    void replace(t_atom_long position, const char *text) { edit("replace", position, gensym(text)); }
    short remove(long row); // both phases

    std::vector<void *> items();
    Lines texts();
    std::string current_text(); // "-" when there is none
    std::string rows();         // "current ROW, selected ROW of NUMBER"
    maxhost::ViewState view();

    // What the view shows of a row.
    maxhost::DrawList painted(long row) { return maxhost::painted_row(owner, row); }

    // An image from the folder of test data.
    static t_jsurface *image_from(const char *file);

    t_object *patcher = nullptr;
    t_object *owner = nullptr;
    t_jlist *list = nullptr;
};
