// The list model and its view: moving, editing, clicks, images, painting, fonts and attributes.
#include <limits>

#include "support/list-test.h"

using namespace maxhost;

namespace {

class JlistTest : public ListTest {
  protected:
    // A load of no resources: the list has data, but no rows.
    void load_no_rows() {
        write_file("none.xml", "<?xml version=\"1.0\"?><resourcefile/>");
        t_jxmlfile *holder = jxmlfile_new(owner);
        EXPECT_EQ(jlist_load_from_xml(list, holder, gensym("none.xml")), 1);
        jxmlfile_free(holder);
    }

    // Rows that the view has and the list does not.
    void show_row_that_is_gone(t_ptr_int row) {
        auto id = reinterpret_cast<t_rowref>(row);
        jdataview_addrows(list->dataview, 1, &id);
    }

    std::string attribute(t_max_err (*getter)(t_jlist *, void *, long *, t_atom **)) {
        long count = 0;
        t_atom *atoms = nullptr;
        EXPECT_EQ(getter(list, nullptr, &count, &atoms), 0);
        const std::string text = print_atoms({atoms, static_cast<size_t>(count)});
        sysmem_freeptr(atoms);
        return text;
    }

    t_max_err set_attribute(t_max_err (*setter)(t_jlist *, void *, long, t_atom *), const char *value) {
        std::vector<t_atom> atoms = parse_atoms(value);
        return setter(list, nullptr, static_cast<long>(atoms.size()), atoms.data());
    }
};

constexpr long most = std::numeric_limits<long>::max(), least = std::numeric_limits<long>::min();

std::string rect_text(const t_rect &rect) {
    return print_float(rect.x) + " " + print_float(rect.y) + " " + print_float(rect.width) + " " +
           print_float(rect.height);
}

std::string colour_text(const t_jrgba &colour) {
    return print_float(colour.red) + " " + print_float(colour.green) + " " + print_float(colour.blue) + " " +
           print_float(colour.alpha);
}

std::string described(const DrawRecord &record) {
    switch (record.kind) {
    case DrawRecord::Kind::text:
        return "\"" + record.text + "\" at " + rect_text(record.rect) + " in " + record.font_name->s_name + " " +
               print_float(record.font_size) + " of " + colour_text(record.color);
    case DrawRecord::Kind::fill:
        return "fill " + rect_text(record.rect) + " of " + colour_text(record.color);
    default:
        return "image from " + rect_text(record.source) + " to " + rect_text(record.rect);
    }
}

Lines described(const DrawList &drawn) {
    Lines all;
    for (const DrawRecord &record : drawn)
        all.push_back(described(record));
    return all;
}

// The traced calls of the data view that were made without the critical region.
Lines calls_outside_the_region(const Lines &traced) {
    Lines outside;
    int depth = 0;
    for (const std::string &line : traced) {
        depth += line == "trace: critical_enter 0";
        depth -= line == "trace: critical_exit 0";
        if (depth == 0 && line.starts_with("trace: jdataview_"))
            outside.push_back(line);
    }
    EXPECT_EQ(depth, 0);
    return outside;
}

const Lines no_lines;

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

// ---- clicks

TEST_F(JlistTest, AClickMakesTheRowCurrentWithoutSelectingItAgain) {
    fill({"a", "b", "c"});
    trace_calls(trace_view);
    jlist_selected(list, gensym("the column that is told"), 1);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_redrawcell \"the column that is told\" 3"}));
    EXPECT_EQ(rows(), "current 1, selected 1 of 3");
    jlist_selected(list, gensym("vrk.tessaroll"), 1);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistTest, AClickIsTakenAsItIs) {
    fill({"a", "b"});
    for (const long row : {0L, 3L, -1L}) {
        jlist_selected(list, gensym("vrk.tessaroll"), row);
        EXPECT_EQ(jlist_currow(list), row);
        EXPECT_EQ(list->selected_row, row);
        EXPECT_EQ(jlist_bang(list), nullptr) << "there is no such row";
    }
}

TEST_F(JlistTest, ThePersonsClickReachesTheList) {
    fill({"a", "b", "c"});
    EXPECT_TRUE(click_row(owner, 2));
    EXPECT_EQ(rows(), "current 2, selected 2 of 3");
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
        EXPECT_EQ(jlist_delete(list), 0) << index;
        EXPECT_EQ(texts(), (Lines{"a", "b", "c"})) << index;
        EXPECT_EQ(rows(), "current 2, selected 2 of 3") << index;
    }
    EXPECT_EQ(take_lines(), no_lines);
}

// ---- a list with data and without rows

TEST_F(JlistTest, WithoutRowsEverySelectionIsRowOne) {
    void (*const moves[])(t_jlist *) = {[](t_jlist *x) { jlist_int(x, 5); },
                                        [](t_jlist *x) { jlist_set(x, -5); },
                                        jlist_next,
                                        jlist_previous,
                                        jlist_home,
                                        jlist_end};
    for (const auto move : moves) {
        load_no_rows();
        list->current_row = 0;
        move(list);
        EXPECT_EQ(jlist_currow(list), 1);
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

// ---- the critical region

TEST_F(JlistTest, TheViewIsToldOfChangesInsideTheRegion) {
    fill({"a", "b", "c"});
    trace_calls(trace_view | trace_lock);
    append("d");
    insert(1, "e");
    replace(2, "f");
    remove(3);
    jlist_int(list, 1);
    jlist_set(list, 2);
    jlist_next(list);
    jlist_selected(list, gensym("vrk.tessaroll"), 1);
    load_no_rows();
    jlist_clear(list);
    EXPECT_EQ(calls_outside_the_region(take_lines()), no_lines);
}

// ---- lists of images

namespace {

class JlistImageTest : public JlistTest {
  protected:
    void SetUp() override {
        JlistTest::SetUp();
        use_images();
        objects_before_ = memory_in_use().objects;
    }

    size_t images_alive() const { return memory_in_use().objects - objects_before_; }

    // A list of three images; misuse of one, as releasing it twice, would be told at once.
    std::vector<void *> fill_with_images() {
        for (int i = 0; i < 3; ++i)
            append_item(image_from("two-by-one.png"));
        EXPECT_EQ(images_alive(), 3u);
        return items();
    }

  private:
    size_t objects_before_ = 0;
};

} // namespace

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

// ---- the view

TEST_F(JlistTest, TheViewIsMadeStepByStep) {
    t_jlist *another = jlist_new(owner, gensym("vrk.tessaroll"), JLIST_FILE_TYPE);
    another->frame = 3;
    trace_calls(trace_view);
    jlist_initdataview(owner, another, 9);
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_new", "trace: jdataview_setclient owner",
                     "trace: jdataview_setborderthickness 3", "trace: jdataview_setscrollvisible 1 0",
                     "trace: jdataview_setheight 10", "trace: jdataview_setautosizerightcolumn 1",
                     "trace: jdataview_setdragenabled 0", "trace: jdataview_addcolumn vrk.tessaroll - 1",
                     "trace: jcolumn_setwidth 104", "trace: jcolumn_setmaxwidth 104",
                     "trace: jdataview_setcolumnheaderheight 0.", "trace: jcolumn_setcustompaint custompaintcell"}));
    EXPECT_EQ(jlist_hasdataview(another), 1);
    jlist_free(another);
}

TEST_F(JlistTest, RowsAreOneFifthHigherThanTheFontInWholePixels) {
    const struct {
        double size;
        long height;
    } cases[] = {{9, 10}, {12, 14}, {10, 12}, {9.9, 11}, {1, 1}, {1000, 1200}, {-5, 1}, {1e300, 10000}};
    for (const auto &[size, height] : cases) {
        jlist_setfontsize(list, size);
        EXPECT_EQ(view().row_height, height) << size;
        EXPECT_EQ(view().font_size, size);
    }
}

TEST_F(JlistTest, TheFontGoesToTheView) {
    trace_calls(trace_view);
    jlist_setfontname(list, gensym("Times"));
    jlist_setfontsize(list, 12);
    jlist_setcellv(list, 20.9);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_setfontname Times", "trace: jdataview_setfontsize 12.",
                                   "trace: jdataview_setheight 14", "trace: jdataview_setheight 20"}));
}

TEST_F(JlistTest, TheViewFollowsPatcherViews) {
    trace_calls(trace_view);
    t_object *window = open_patcher_view(patcher);
    jlist_newpatcherview(list, window);
    jlist_freepatcherview(list, window);
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_patchervis patcherview owner", "trace: jdataview_patcherinvis patcherview"}));
}

// ---- painting

TEST_F(JlistTest, ATextIsPaintedInTheFontOfTheBox) {
    fill({"alpha", "beta gamma"});
    EXPECT_EQ(described(painted(1)), (Lines{"\"alpha\" at 2. 9. 0. 0. in Arial 9. of 0. 0. 0. 1."}));
    jbox_set_fontsize(owner, 12);
    jbox_set_fontname(owner, gensym("Times"));
    EXPECT_EQ(described(painted(1)), (Lines{"\"alpha\" at 2. 12. 0. 0. in Times 12. of 0. 0. 0. 1."}))
        << "the font is asked for at every painting";
}

TEST_F(JlistTest, TheCurrentRowLiesUnderTheSelectionColour) {
    const Lines plain = {"\"a\" at 2. 9. 0. 0. in Arial 9. of 0. 0. 0. 1."};
    const Lines highlighted = {plain[0], "fill 0. 0. 104. 10. of 0.05 0.91 0.91 0.3"};
    fill({"a", "a", "a"});
    EXPECT_EQ(described(painted(2)), plain);
    EXPECT_EQ(described(painted(3)), highlighted);
    jlist_set(list, 2);
    EXPECT_EQ(described(painted(2)), highlighted) << "though no row is selected in the view";
    EXPECT_EQ(described(painted(3)), plain);
    list->selected_row = 1;
    EXPECT_EQ(described(painted(1)), plain) << "the selected row has no looks of its own";
}

TEST_F(JlistTest, ALongTextIsCutTo2047Bytes) {
    for (const size_t length : {2046u, 2047u, 2048u, 5000u}) {
        fill({std::string(length, 'x')});
        EXPECT_EQ(painted(1).at(0).text, std::string(std::min<size_t>(length, 2047), 'x')) << length;
    }
}

TEST_F(JlistTest, TextsArePaintedAsTheyAre) {
    fill({"", "two\nlines", "\xC3\xA9t\xC3\xA9"});
    EXPECT_EQ(painted(1).at(0).text, "");
    EXPECT_EQ(painted(2).at(0).text, "two\nlines");
    EXPECT_EQ(painted(3).at(0).text, "\xC3\xA9t\xC3\xA9");
}

TEST_F(JlistTest, RowsThatAreGoneAreLeftBlank) {
    fill({"a", "b"});
    show_row_that_is_gone(7);
    jlist_selected(list, gensym("vrk.tessaroll"), 7);
    EXPECT_EQ(described(painted(3)), no_lines) << "without a highlight";
    jlist_clear(list);
    show_row_that_is_gone(1);
    EXPECT_EQ(described(painted(1)), no_lines) << "in an empty list";
    use_images();
    show_row_that_is_gone(1);
    EXPECT_EQ(described(painted(1)), no_lines) << "in a list of images";
}

TEST_F(JlistTest, NothingIsPaintedOutsideOfPainting) {
    fill({"a"});
    jlist_custompaintcell(list, open_patcher_view(patcher), gensym("vrk.tessaroll"), 1, 104, 10, 0);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistImageTest, AnImageIsPaintedInTheMiddleInItsOwnSize) {
    append_item(image_from("forty-by-twenty.png"));
    append_item(image_from("two-by-one.png"));
    EXPECT_EQ(described(painted(1)), (Lines{"image from 0. 0. 40. 20. to 32. -5. 40. 20."}));
    EXPECT_EQ(described(painted(2)),
              (Lines{"image from 0. 0. 2. 1. to 51. 4.5 2. 1.", "fill 0. 0. 104. 10. of 0.05 0.91 0.91 0.3"}));
}

TEST_F(JlistImageTest, ARowWithoutAnImageIsOnlyHighlighted) {
    append_item(nullptr);
    append_item(nullptr);
    EXPECT_EQ(described(painted(1)), no_lines);
    EXPECT_EQ(described(painted(2)), (Lines{"fill 0. 0. 104. 10. of 0.05 0.91 0.91 0.3"}));
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistImageTest, APaintedImageOutlivesItsRow) {
    append_item(image_from("forty-by-twenty.png"));
    const DrawList drawn = painted(1);
    jlist_clear(list);
    EXPECT_EQ(images_alive(), 1u);
    EXPECT_EQ(jgraphics_image_surface_get_width(drawn.at(0).image.get()), 40);
}

// ---- attributes

TEST_F(JlistTest, TheFrameIsKeptAndDoesNotReachTheView) {
    EXPECT_EQ(attribute(jlist_getframe), "1");
    EXPECT_EQ(set_attribute(jlist_frame, "0"), 0);
    EXPECT_EQ(attribute(jlist_getframe), "0");
    EXPECT_EQ(view().border, 1);
    EXPECT_EQ(set_attribute(jlist_frame, "65535"), 0);
    EXPECT_EQ(attribute(jlist_getframe), "-1") << "16 bits with a sign";
    EXPECT_EQ(set_attribute(jlist_frame, "2."), -2);
    EXPECT_EQ(set_attribute(jlist_frame, ""), -2);
    EXPECT_EQ(attribute(jlist_getframe), "-1");
}

TEST_F(JlistTest, TheSelectionColourIsThatOfTheNextPainting) {
    EXPECT_EQ(attribute(jlist_getselectcolor), "0.05 0.91 0.91 0.3");
    fill({"a"});
    EXPECT_EQ(set_attribute(jlist_selectcolor, "1. 0. 0. 0.5"), 0);
    EXPECT_EQ(described(painted(1)).at(1), "fill 0. 0. 104. 10. of 1. 0. 0. 0.5");
    EXPECT_EQ(set_attribute(jlist_selectcolor, "0 1 0 1"), -2) << "integers";
    EXPECT_EQ(attribute(jlist_getselectcolor), "1. 0. 0. 0.5");
    EXPECT_EQ(set_attribute(jlist_selectcolor, "0.1 0.2"), -2);
    EXPECT_EQ(attribute(jlist_getselectcolor), "0.1 0.2 0. 0.5") << "as far as it went";
}
