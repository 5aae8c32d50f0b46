// The list box as the tests of failures see it.
#include "faults/list-box.h"

#include <algorithm>

#include "vrk.tessaroll.h"

using namespace maxhost;

extern "C" void ext_main(void *);

namespace {

t_jlist *list_of(t_object *box) { return reinterpret_cast<t_tessaroll *>(box)->jlist; }

} // namespace

void register_list_box() {
    static const bool registered = (ext_main(nullptr), true);
    static_cast<void>(registered);
}

t_object *new_list_box(t_object *patcher) {
    return new_box(patcher, gensym("vrk.tessaroll"), empty_dictionary().get());
}

Lines items_of(t_object *box) {
    t_jlist *list = list_of(box);
    Lines all;
    for (long row = 1; jlist_hasdata(list) && row <= jlist_numrows(list); ++row)
        all.emplace_back(static_cast<t_symbol *>(jlist_getdata(list, row))->s_name);
    return all;
}

void expect_whole(t_object *box) {
    t_jlist *list = list_of(box);
    const long count = jlist_hasdata(list) ? jlist_numrows(list) : 0;
    ViewState view{};
    ASSERT_TRUE(data_view_state(box, view));
    EXPECT_EQ(view.rows, count);
    EXPECT_LE(jlist_hasdata(list) ? 1 : 0, jlist_currow(list));
    EXPECT_LE(jlist_currow(list), std::max(count, 1L)); // 1 also in a list that was read without rows
    EXPECT_LE(view.selected, count);
}
