// The view of a list: what it is told, clicks, painting, fonts and attributes.
#include <algorithm>
#include <cmath>

#include "support/jlist-test.h"

using namespace maxhost;

namespace {

std::string rect_text(const t_rect &rect) {
    return print_float(rect.x) + " " + print_float(rect.y) + " " + print_float(rect.width) + " " +
           print_float(rect.height);
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

} // namespace

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

TEST_F(JlistTest, MeasuresAreTruncatedTowardZeroAndBounded) {
    trace_calls(trace_view);
    const struct {
        double height;
        const char *pixels;
    } cases[] = {
        {20.9, "20"},       {0.9, "0"}, {-0.9, "0"}, {-6.9, "-6"}, {1e300, "2147483647"}, {-1e300, "-2147483648"},
        {std::nan(""), "0"}};
    for (const auto &[height, pixels] : cases) {
        jlist_setcellv(list, height);
        EXPECT_EQ(take_lines(), (Lines{std::string("trace: jdataview_setheight ") + pixels})) << height;
    }
}

TEST_F(JlistTest, AColumnIsSixteenPixelsNarrowerThanItsBoxAlsoBelowZero) {
    const struct {
        const char *rect;
        const char *width;
    } cases[] = {{"0. 0. 216.9 90.", "200"}, {"0. 0. 16. 90.", "0"}, {"0. 0. 10. 90.", "-6"}, {"0. 0. 0. 90.", "-16"}};
    for (const auto &[rect, width] : cases) {
        send_message(owner, parse_atoms(std::string("patching_rect ") + rect));
        trace_calls(trace_view);
        use_texts();
        const Lines calls = take_lines();
        EXPECT_NE(std::find(calls.begin(), calls.end(), std::string("trace: jcolumn_setwidth ") + width), calls.end())
            << rect;
        EXPECT_NE(std::find(calls.begin(), calls.end(), std::string("trace: jcolumn_setmaxwidth ") + width),
                  calls.end())
            << rect;
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

TEST_F(JlistImageTest, AnImageIsInTheMiddleOfAnyCell) {
    send_message(owner, parse_atoms("patching_rect 0. 0. 216. 90."));
    use_images();
    append_item(image_from("forty-by-twenty.png"));
    EXPECT_EQ(described(painted(1)).at(0), "image from 0. 0. 40. 20. to 80. -5. 40. 20.");
}

TEST_F(JlistImageTest, TheRegionIsNotHeldWhileAnImageIsDrawn) {
    append_item(image_from("forty-by-twenty.png"));
    trace_calls(trace_lock);
    jlist_custompaint_surface_cell(list, nullptr, gensym("pictures"), 1, 104, 10, 0); // the drawing itself is told
    int depth = 0;
    bool drawn = false;
    for (const std::string &line : take_lines()) {
        depth += line == "trace: critical_enter 0";
        depth -= line == "trace: critical_exit 0";
        if (line.starts_with("misuse: jgraphics_image_surface_draw"))
            drawn = depth == 0;
    }
    EXPECT_TRUE(drawn);
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
