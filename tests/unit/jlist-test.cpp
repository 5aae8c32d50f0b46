// The list model: moving, editing and images.
#include <limits>

#include "support/jlist-test.h"

using namespace maxhost;

namespace {

constexpr long most = std::numeric_limits<long>::max(), least = std::numeric_limits<long>::min();

} // namespace

// ---- life

TEST_F(JlistTest, ANewListIsEmptyAndHasNoView) {
    t_jlist *fresh = jlist_new(owner, gensym("column"), 0x1234);
    EXPECT_EQ(fresh->owner, owner);
    EXPECT_EQ(fresh->column_name, gensym("column"));
    EXPECT_EQ(fresh->file_type, 0x1234);
    EXPECT_EQ(jlist_hasdata(fresh), 0);
    EXPECT_EQ(jlist_hasdataview(fresh), 0);
    EXPECT_EQ(jlist_numrows(fresh), 0);
    EXPECT_EQ(jlist_currow(fresh), 0);
    EXPECT_EQ(fresh->selected_row, 0);
    EXPECT_EQ(fresh->frame, 1);
    EXPECT_EQ(colour_text(fresh->select_color), "0.05 0.91 0.91 0.3");
    jlist_free(fresh);
}

TEST_F(JlistTest, WithoutMemoryThereIsNoList) {
    fail_nth_allocation(1);
    EXPECT_EQ(jlist_new(owner, gensym("vrk.tessaroll"), JLIST_FILE_TYPE), nullptr);
    jlist_free(nullptr);
}

TEST_F(JlistTest, FreeingAListEmptiesAndFreesItsView) {
    const size_t objects = memory_in_use().objects;
    t_jlist *another = jlist_new(owner, gensym("vrk.tessaroll"), JLIST_FILE_TYPE);
    jlist_initdataview(owner, another, 9);
    EXPECT_EQ(memory_in_use().objects, objects + 1);
    trace_calls(trace_view);
    jlist_free(another);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_clear"}));
    EXPECT_EQ(memory_in_use().objects, objects);
}

TEST_F(JlistTest, AListNeedsNoView) {
    trace_calls(trace_view);
    t_jlist *hidden = jlist_new(nullptr, gensym("vrk.tessaroll"), JLIST_FILE_TYPE);
    t_atom arguments[2];
    atom_setsym(arguments, gensym("a"));
    atom_setlong(arguments + 1, 1);
    for (const char *mode : {"append", "append", "insert", "replace"})
        jlist_append(hidden, gensym(mode), gensym(mode), 2, arguments);
    jlist_int(hidden, 3);
    jlist_set(hidden, 2);
    jlist_selected(hidden, gensym("column"), 1);
    jlist_setdelete(hidden, 1);
    EXPECT_EQ(jlist_delete(hidden), 0);
    EXPECT_EQ(jlist_numrows(hidden), 2);
    EXPECT_EQ(jlist_getdata(hidden, 1), gensym("replace"));
    jlist_setfontname(hidden, gensym("Times"));
    jlist_setfontsize(hidden, 14.0);
    jlist_setcellv(hidden, 20.0);
    jlist_newpatcherview(hidden, patcher);
    jlist_freepatcherview(hidden, patcher);
    jlist_free(hidden);
    EXPECT_EQ(take_lines(), no_lines);
}

// ---- moving: "int"

TEST_F(JlistTest, IntSelectsARowAndIsClampedIntoTheList) {
    const struct {
        long asked, row;
    } cases[] = {{1, 1}, {2, 2}, {3, 3}, {4, 3}, {99, 3}, {most, 3}, {0, 1}, {-1, 1}, {least, 1}};
    fill({"a", "b", "c"});
    for (const auto &[asked, row] : cases) {
        jlist_int(list, asked);
        EXPECT_EQ(jlist_currow(list), row) << asked;
        EXPECT_EQ(list->selected_row, row) << asked;
        EXPECT_EQ(view().selected, row) << asked;
    }
}

TEST_F(JlistTest, IntRedrawsTheRowThatWasCurrentAndAlwaysSelects) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    jlist_int(list, 1);
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_redrawcell vrk.tessaroll 3", "trace: jdataview_selectcell vrk.tessaroll 1"}));
    jlist_int(list, 1);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_selectcell vrk.tessaroll 1"}));
    jlist_int(list, -5);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_selectcell vrk.tessaroll 1"}));
}

// ---- moving: "set"

TEST_F(JlistTest, SetMakesARowCurrentAndTakesTheSelectionAway) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    jlist_set(list, 1);
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_selectcell vrk.tessaroll 0", "trace: jdataview_redrawcell vrk.tessaroll 1"}))
        << "the row that was current is not redrawn";
    EXPECT_EQ(rows(), "current 1, selected 0 of 3");
    EXPECT_EQ(view().selected, 0);
}

TEST_F(JlistTest, SetWithTheCurrentRowDoesNothing) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    jlist_set(list, 3);
    jlist_set(list, 4); // clamped to it
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(rows(), "current 3, selected 3 of 3");
}

TEST_F(JlistTest, SetIsClampedIntoTheList) {
    const struct { long asked, row; } cases[] = {{2, 2}, {0, 1}, {99, 3}, {-7, 1}, {most, 3}, {least, 1}};
    fill({"a", "b", "c"});
    for (const auto &[asked, row] : cases) {
        jlist_set(list, asked);
        EXPECT_EQ(jlist_currow(list), row) << asked;
    }
}

// ---- moving: steps

TEST_F(JlistTest, StepsGoFromTheCurrentRowAndDoNotWrap) {
    const struct {
        void (*step)(t_jlist *);
        long row;
    } steps[] = {{jlist_home, 1},     {jlist_previous, 1}, {jlist_next, 2}, {jlist_next, 3},
                 {jlist_next, 3},     {jlist_previous, 2}, {jlist_end, 3},  {jlist_end, 3},
                 {jlist_previous, 2}, {jlist_home, 1},     {jlist_home, 1}};
    fill({"a", "b", "c"});
    for (const auto &[step, row] : steps) {
        step(list);
        EXPECT_EQ(jlist_currow(list), row);
        EXPECT_EQ(view().selected, row);
    }
}

TEST_F(JlistTest, AStepThatStaysStillSelects) {
    fill({"a", "b"});
    trace_calls(trace_view);
    jlist_next(list);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_selectcell vrk.tessaroll 2"}));
    jlist_home(list);
    take_lines();
    jlist_previous(list);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_selectcell vrk.tessaroll 1"}));
}

TEST_F(JlistTest, StepsFromRowZeroReachTheFirstRow) {
    fill({"a", "b"});
    jlist_selected(list, gensym("vrk.tessaroll"), 0);
    jlist_previous(list);
    EXPECT_EQ(jlist_currow(list), 1);
    jlist_selected(list, gensym("vrk.tessaroll"), 0);
    jlist_next(list);
    EXPECT_EQ(jlist_currow(list), 1);
}

TEST_F(JlistTest, WithoutDataNothingMoves) {
    trace_calls(trace_view);
    jlist_int(list, 1);
    jlist_set(list, 1);
    jlist_next(list);
    jlist_previous(list);
    jlist_home(list);
    jlist_end(list);
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(rows(), "current 0, selected 0 of 0");
}

// ---- the current item

TEST_F(JlistTest, BangGivesTheCurrentItemAndSelectsItsRow) {
    fill({"a", "b", "c"});
    jlist_set(list, 2);
    trace_calls(trace_view);
    EXPECT_EQ(jlist_bang(list), gensym("b"));
    EXPECT_EQ(rows(), "current 2, selected 2 of 3");
    EXPECT_EQ(take_lines(), no_lines) << "the view is not told";
}

TEST_F(JlistTest, BangWithoutACurrentRowGivesNothing) {
    EXPECT_EQ(jlist_bang(list), nullptr) << "a new list";
    fill({"a", "b"});
    for (const long row : {0L, -1L, 3L, most, least}) {
        list->current_row = row;
        list->selected_row = 77;
        EXPECT_EQ(jlist_bang(list), nullptr) << row;
        EXPECT_EQ(list->selected_row, 77) << "nothing changes";
    }
    jlist_clear(list);
    EXPECT_EQ(jlist_bang(list), nullptr) << "a cleared list";
}

TEST_F(JlistTest, OnlyRowsOfTheListHaveItems) {
    fill({"a", "b"});
    EXPECT_EQ(jlist_getdata(list, 1), gensym("a"));
    EXPECT_EQ(jlist_getdata(list, 2), gensym("b"));
    for (const long row : {0L, -1L, 3L, most, least})
        EXPECT_EQ(jlist_getdata(list, row), nullptr) << row;
}

// ---- clearing

TEST_F(JlistTest, ClearingTakesEverythingOut) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    jlist_clear(list);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_clear"}));
    EXPECT_EQ(jlist_hasdata(list), 0);
    EXPECT_EQ(rows(), "current 0, selected 0 of 0");
    EXPECT_EQ(view().rows, 0);
    EXPECT_EQ(view().selected, 0);
    jlist_clear(list);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_clear"})) << "also of an empty list";
}

TEST_F(JlistTest, ClearingKeepsThePendingEdits) {
    fill({"a", "b", "c"});
    replace(2, "x");
    jlist_setdelete(list, 2);
    jlist_clear(list);
    EXPECT_EQ(list->edit_index, 1);
    EXPECT_EQ(list->replace_mode, 1);
    EXPECT_EQ(list->delete_index, 2);
}

// ---- "append"

TEST_F(JlistTest, TheFirstAppendMakesRowOne) {
    trace_calls(trace_view);
    append("a");
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_clear", "trace: jdataview_addrows 1",
                     "trace: jdataview_redrawcell vrk.tessaroll 0", "trace: jdataview_selectcell vrk.tessaroll 1"}));
    EXPECT_EQ(texts(), (Lines{"a"}));
    EXPECT_EQ(rows(), "current 1, selected 1 of 1");
    EXPECT_EQ(view().rows, 1);
    EXPECT_EQ(view().selected, 1);
}

TEST_F(JlistTest, AppendGoesBehindTheLastRowAndMakesItCurrent) {
    fill({"a", "b"});
    jlist_int(list, 1);
    trace_calls(trace_view);
    append("c");
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_clear", "trace: jdataview_addrows 3",
                     "trace: jdataview_redrawcell vrk.tessaroll 1", "trace: jdataview_selectcell vrk.tessaroll 3"}));
    EXPECT_EQ(texts(), (Lines{"a", "b", "c"}));
    EXPECT_EQ(rows(), "current 3, selected 3 of 3");
    EXPECT_EQ(list->edit_index, 2);
    EXPECT_EQ(list->replace_mode, 0);
}

TEST_F(JlistTest, TheSameTextMayStandInManyRows) {
    fill({"a", "a", "", "a"});
    EXPECT_EQ(texts(), (Lines{"a", "a", "", "a"}));
}

// ---- "insert"

TEST_F(JlistTest, InsertPutsTheItemAtItsPosition) {
    const struct {
        t_atom_long position;
        Lines texts;
        long row;
    } cases[] = {
        {1, {"x", "a", "b", "c"}, 1},
        {2, {"a", "x", "b", "c"}, 2},
        {3, {"a", "b", "x", "c"}, 3},
        {4, {"a", "b", "c", "x"}, 4}, // as "append"
        {5, {"a", "b", "c", "x"}, 4}, // from here on clamped
        {std::numeric_limits<t_atom_long>::max(), {"a", "b", "c", "x"}, 4},
        {0, {"x", "a", "b", "c"}, 1},
        {-1, {"x", "a", "b", "c"}, 1},
        {std::numeric_limits<t_atom_long>::min(), {"x", "a", "b", "c"}, 1},
    };
    for (const auto &[position, texts_after, row] : cases) {
        fill({"a", "b", "c"});
        insert(position, "x");
        EXPECT_EQ(texts(), texts_after) << position;
        EXPECT_EQ(jlist_currow(list), row) << position;
        EXPECT_EQ(list->selected_row, row) << position;
        EXPECT_EQ(view().rows, 4) << position;
        EXPECT_EQ(view().selected, row) << position;
    }
}

TEST_F(JlistTest, InsertShowsTheRowsAnewAndThenSelects) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    insert(2, "x");
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_clear", "trace: jdataview_addrows 4",
                     "trace: jdataview_redrawcell vrk.tessaroll 3", "trace: jdataview_selectcell vrk.tessaroll 2"}));
    insert(2, "y");
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_clear", "trace: jdataview_addrows 5",
                                   "trace: jdataview_selectcell vrk.tessaroll 2"}))
        << "the current row has stayed the current row";
    EXPECT_EQ(texts(), (Lines{"a", "y", "x", "b", "c"}));
}

TEST_F(JlistTest, InsertFillsAnEmptyList) {
    insert(7, "a");
    EXPECT_EQ(texts(), (Lines{"a"}));
    EXPECT_EQ(rows(), "current 1, selected 1 of 1");
}

TEST_F(JlistTest, APositionIsReadFromAnyNumber) {
    fill({"a", "b", "c"});
    std::vector<t_atom> arguments = parse_atoms("x 2.9");
    jlist_append(list, gensym("insert"), gensym("x"), 2, arguments.data());
    EXPECT_EQ(texts(), (Lines{"a", "x", "b", "c"}));
    jlist_append(list, gensym("insert"), gensym("y"), 1, arguments.data());
    EXPECT_EQ(texts(), (Lines{"y", "a", "x", "b", "c"})) << "no position is position 0";
    jlist_append(list, gensym("append"), gensym("z"), 0, nullptr);
    EXPECT_EQ(texts(), (Lines{"y", "a", "x", "b", "c", "z"})) << "that needs no arguments";
}

// ---- "replace"

TEST_F(JlistTest, ReplaceOverwritesARowInPlace) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    replace(2, "x");
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_redrawcell vrk.tessaroll 0", "trace: jdataview_selectcell vrk.tessaroll 2"}))
        << "the row that was current is not redrawn";
    EXPECT_EQ(texts(), (Lines{"a", "x", "c"}));
    EXPECT_EQ(rows(), "current 2, selected 2 of 3");
    replace(2, "y");
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_redrawcell vrk.tessaroll 0", "trace: jdataview_selectcell vrk.tessaroll 2"}))
        << "the current row itself counts as a change, too";
    EXPECT_EQ(list->edit_index, 1);
    EXPECT_EQ(list->replace_mode, 1);
}

TEST_F(JlistTest, ReplaceOutsideTheListChangesNothing) {
    for (const t_atom_long position :
         {t_atom_long{0}, t_atom_long{-1}, t_atom_long{4}, std::numeric_limits<t_atom_long>::max(),
          std::numeric_limits<t_atom_long>::min()}) {
        fill({"a", "b", "c"});
        trace_calls(trace_view);
        replace(position, "x");
        EXPECT_EQ(take_lines(), no_lines) << position;
        EXPECT_EQ(texts(), (Lines{"a", "b", "c"})) << position;
        EXPECT_EQ(rows(), "current 3, selected 3 of 3") << position;
    }
}

TEST_F(JlistTest, ReplaceInAnEmptyListOnlyForgetsTheCurrentRow) {
    list->current_row = 5; // as a view could have told
    trace_calls(trace_view);
    replace(1, "x");
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(jlist_hasdata(list), 0);
    EXPECT_EQ(rows(), "current 0, selected 0 of 0");
}

// ---- any other mode

TEST_F(JlistTest, AnUnknownModeRepeatsTheLastEdit) {
    fill({"a", "b", "c"});
    edit("prepend", 1, gensym("x"));
    EXPECT_EQ(texts(), (Lines{"a", "b", "x", "c"})) << "the slot of the last append";
    insert(1, "y");
    edit("prepend", 3, gensym("z"));
    EXPECT_EQ(texts(), (Lines{"z", "y", "a", "b", "x", "c"})) << "the slot of the last insert";
    replace(2, "w");
    edit("prepend", 5, gensym("v"));
    EXPECT_EQ(texts(), (Lines{"z", "v", "a", "b", "x", "c"})) << "in the row of the last replace";
    EXPECT_EQ(rows(), "current 2, selected 2 of 6");
}

TEST_F(JlistTest, AnUnknownModeInAnEmptyListAppends) {
    fill({"a", "b", "c"});
    replace(3, "x");
    jlist_clear(list);
    edit("prepend", 9, gensym("y"));
    EXPECT_EQ(texts(), (Lines{"y"}));
    EXPECT_EQ(list->replace_mode, 0);
}

TEST_F(JlistTest, ASlotThatIsGoneIsNotAddressed) {
    fill({"a", "b", "c"}); // the last slot is the third
    remove(3);
    remove(2);
    edit("prepend", 1, gensym("x"));
    EXPECT_EQ(texts(), (Lines{"a", "x"}));
    fill({"a", "b", "c"});
    replace(3, "c");
    remove(3);
    edit("prepend", 1, gensym("x"));
    EXPECT_EQ(texts(), (Lines{"a", "b"}));
}

// ---- deleting, in two phases

TEST_F(JlistTest, TheFirstPhaseOnlyNotesTheRow) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    jlist_setdelete(list, 0);
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(texts(), (Lines{"a", "b", "c"}));
    EXPECT_EQ(list->delete_index, 0);
    jlist_setdelete(list, 1);
    EXPECT_EQ(jlist_delete(list), 0);
    EXPECT_EQ(texts(), (Lines{"a", "c"})) << "the row that was noted last";
}

TEST_F(JlistTest, TheRowBehindTheDeletedOneBecomesCurrent) {
    const struct {
        long deleted;
        Lines texts;
        long row;
    } cases[] = {{1, {"b", "c"}, 1}, {2, {"a", "c"}, 2}, {3, {"a", "b"}, 2}};
    for (const auto &[deleted, texts_after, row] : cases) {
        fill({"a", "b", "c"});
        EXPECT_EQ(remove(deleted), 0);
        EXPECT_EQ(texts(), texts_after) << deleted;
        EXPECT_EQ(jlist_currow(list), row) << deleted;
        EXPECT_EQ(list->selected_row, row) << deleted;
        EXPECT_EQ(view().rows, 2) << deleted;
        EXPECT_EQ(view().selected, row) << deleted;
    }
}

TEST_F(JlistTest, DeletingShowsTheRowsAnewAndThenSelects) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    remove(1);
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_clear", "trace: jdataview_addrows 2",
                     "trace: jdataview_redrawcell vrk.tessaroll 3", "trace: jdataview_selectcell vrk.tessaroll 1"}));
}

TEST_F(JlistTest, FewerThanTwoRowsAreNotDeleted) {
    trace_calls(trace_view);
    EXPECT_EQ(remove(1), 1) << "an empty list";
    append("a");
    take_lines();
    for (const long row : {1L, 0L, 2L, 99L})
        EXPECT_EQ(remove(row), 1) << row;
    EXPECT_EQ(texts(), (Lines{"a"}));
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistTest, DeletingOutsideTheListChangesNothing) {
    fill({"a", "b", "c"});
    jlist_int(list, 2);
    trace_calls(trace_view);
    for (const long index : {-1L, 3L, 99L, most, least}) {
        jlist_setdelete(list, index);
        EXPECT_EQ(jlist_delete(list), JLIST_NOT_DELETED) << index;
        EXPECT_EQ(texts(), (Lines{"a", "b", "c"})) << index;
        EXPECT_EQ(rows(), "current 2, selected 2 of 3") << index;
    }
    EXPECT_EQ(take_lines(), no_lines);
}

// ---- a list with data and without rows

TEST_F(JlistTest, WithoutRowsEverySelectionIsRowOne) {
    const struct {
        void (*move)(t_jlist *);
        const char *rows;
    } cases[] = {{[](t_jlist *x) { jlist_int(x, 5); }, "current 1, selected 1 of 0"},
                 {[](t_jlist *x) { jlist_set(x, -5); }, "current 1, selected 0 of 0"},
                 {jlist_next, "current 1, selected 1 of 0"},
                 {jlist_previous, "current 1, selected 1 of 0"},
                 {jlist_home, "current 1, selected 1 of 0"},
                 {jlist_end, "current 1, selected 1 of 0"}};
    for (const auto &[move, rows_after] : cases) {
        load_no_rows();
        list->current_row = list->selected_row = 0;
        move(list);
        EXPECT_EQ(rows(), rows_after);
        EXPECT_EQ(view().selected, 0);
        EXPECT_EQ(jlist_bang(list), nullptr);
    }
}

TEST_F(JlistTest, WithoutRowsThereIsNothingToDeleteOrReplace) {
    load_no_rows();
    EXPECT_EQ(jlist_hasdata(list), 1);
    EXPECT_EQ(remove(1), 1);
    replace(1, "x");
    EXPECT_EQ(texts(), no_lines);
    EXPECT_EQ(jlist_getdata(list, 1), nullptr);
}

TEST_F(JlistTest, AListWithoutRowsIsFilledWithoutForgettingTheLastEdit) {
    fill({"a", "b", "c"});
    replace(2, "x");
    load_no_rows();
    edit("prepend", 1, gensym("y"));
    EXPECT_EQ(texts(), no_lines) << "still the replace of row 2";
    append("z");
    EXPECT_EQ(texts(), (Lines{"z"}));
    EXPECT_EQ(rows(), "current 1, selected 1 of 1");
}

// ---- lists of images

TEST_F(JlistImageTest, ClearingDestroysTheImagesOnce) {
    fill_with_images();
    append_item(nullptr);
    jlist_clear(list);
    EXPECT_EQ(images_alive(), 0u);
    jlist_clear(list);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistImageTest, FreeingTheListDestroysTheImages) {
    fill_with_images();
    use_texts();
    EXPECT_EQ(images_alive(), 0u);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistImageTest, DeletingDestroysTheImageOfTheRow) {
    const std::vector<void *> images = fill_with_images();
    EXPECT_EQ(remove(2), 0);
    EXPECT_EQ(images_alive(), 2u);
    EXPECT_EQ(items(), (std::vector<void *>{images[0], images[2]}));
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistImageTest, ARowWithoutAnImageIsDeletedLikeAnyOther) {
    append_item(image_from("two-by-one.png"));
    append_item(nullptr);
    EXPECT_EQ(remove(2), 0);
    EXPECT_EQ(images_alive(), 1u);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistImageTest, InsertingMovesTheImages) {
    const std::vector<void *> images = fill_with_images();
    void *image = image_from("two-by-one.png");
    edit("insert", 2, image);
    EXPECT_EQ(items(), (std::vector<void *>{images[0], image, images[1], images[2]}));
    EXPECT_EQ(images_alive(), 4u);
}

TEST_F(JlistImageTest, ReplacingDestroysTheImageThatWasThere) {
    const std::vector<void *> images = fill_with_images();
    void *image = image_from("two-by-one.png");
    edit("replace", 2, image);
    EXPECT_EQ(items(), (std::vector<void *>{images[0], image, images[2]}));
    EXPECT_EQ(images_alive(), 3u);
    edit("replace", 2, image);
    EXPECT_EQ(images_alive(), 3u) << "not when it is put in its own place";
    edit("replace", 2, nullptr);
    EXPECT_EQ(images_alive(), 2u);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistImageTest, AnImageThatFindsNoRowIsDestroyed) {
    edit("replace", 1, image_from("two-by-one.png"));
    EXPECT_EQ(images_alive(), 0u) << "no data";
    fill_with_images();
    edit("replace", 4, image_from("two-by-one.png"));
    EXPECT_EQ(images_alive(), 3u);
    EXPECT_EQ(take_lines(), no_lines);
}
