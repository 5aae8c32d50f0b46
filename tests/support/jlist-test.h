// A test of the list itself: of texts, or of images.
#pragma once

#include "support/list-test.h"

class JlistTest : public ListTest {
  protected:
    // A load of no resources: the list has data, but no rows.
    void load_no_rows();

    // Rows that the view has and the list does not.
    void show_row_that_is_gone(t_ptr_int row);

    // The value of an attribute, through its own functions.
    std::string attribute(t_max_err (*getter)(t_jlist *, void *, long *, t_atom **));
    t_max_err set_attribute(t_max_err (*setter)(t_jlist *, void *, long, t_atom *), const char *value);
};

// The list is one of images, and empty.
class JlistImageTest : public JlistTest {
  protected:
    void SetUp() override;

    size_t images_alive() const { return maxhost::memory_in_use().objects - objects_before_; }

    // A list of three images; misuse of one, as releasing it twice, would be told at once.
    std::vector<void *> fill_with_images();

  private:
    size_t objects_before_ = 0;
};

// Red, green, blue and alpha, as they print.
std::string colour_text(const t_jrgba &colour);
