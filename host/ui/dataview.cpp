// The data view.
#include "ui/dataview.h"

#include <algorithm>
#include <span>

#include "ext_proto.h"
#include "kernel/frontend.h"
#include "kernel/objects.h"
#include "kernel/trace.h"
#include "ui/box.h"
#include "ui/patcher.h"

namespace maxhost {
namespace {

DataView *expect_view(t_object *view, const char *function) { return expect<DataView>(view, function); }
Column *expect_column(t_object *column, const char *function) { return expect<Column>(column, function); }

// These are called with the mutex held.

long row_count(const DataView &view) { return static_cast<long>(view.counted_rows + view.other_rows.size()); }

// The position of a row, 1-based; 0 when it is none.
long position_of(const DataView &view, t_rowref row) {
    const auto id = reinterpret_cast<t_ptr_uint>(row);
    if (id == 0)
        return 0;
    if (id <= view.counted_rows)
        return static_cast<long>(id);
    auto found = std::find(view.other_rows.begin(), view.other_rows.end(), row);
    return found == view.other_rows.end() ? 0 : row_count(view) - std::distance(found, view.other_rows.end()) + 1;
}

void ask_repaint(const DataView &view) {
    if (view.client && front_end().repaint)
        front_end().repaint(view.client);
}

// The row at a position, or null. The mutex is held.
t_rowref row_at(const DataView &view, long position) {
    if (position < 1 || position > row_count(view))
        return nullptr;
    const auto at = static_cast<size_t>(position);
    return at <= view.counted_rows ? reinterpret_cast<t_rowref>(at) : view.other_rows[at - view.counted_rows - 1];
}

// How many ids at the front are the positions from `first` on. There may be very many, so that they are looked at in
// blocks, which the compiler can compare several at a time, and in two halves, which do not wait for each other.
size_t count_positions(std::span<const t_rowref> rows, t_ptr_uint first) {
    constexpr size_t half = 64;
    const auto difference_at = [&](size_t at) { return reinterpret_cast<t_ptr_uint>(rows[at]) ^ (first + at); };
    size_t i = 0;
    for (; i + 2 * half <= rows.size(); i += 2 * half) {
        t_ptr_uint one = 0, other = 0;
        for (size_t at = i; at < i + half; ++at) {
            one |= difference_at(at);
            other |= difference_at(at + half);
        }
        if (one | other)
            break;
    }
    while (i < rows.size() && reinterpret_cast<t_ptr_uint>(rows[i]) == first + i)
        ++i;
    return i;
}

// Adds rows at the end. The mutex is held.
void add_rows(DataView &view, std::span<const t_rowref> rows) {
    const size_t counted = view.other_rows.empty() ? count_positions(rows, view.counted_rows + 1) : 0;
    view.other_rows.insert(view.other_rows.end(), rows.begin() + static_cast<long>(counted), rows.end());
    view.counted_rows += counted;
}

bool is_row(DataView &view, t_rowref row) {
    std::lock_guard lock(view.mutex);
    return position_of(view, row) != 0;
}

int width_of(const Column &column) { return static_cast<int>(std::min(column.width, column.max_width)); }

} // namespace

Class *Column::host_class() {
    static Class *const cls = new_host_class("jcolumn", false);
    return cls;
}

Class *DataView::host_class() {
    static Class *const cls = new_host_class("jdataview", true);
    return cls;
}

DataView::~DataView() {
    for (Column *column : columns)
        object_free(column);
    if (BoxState *state = box_state(client))
        std::erase(state->views, this);
}

ViewState view_state(DataView &view) {
    std::lock_guard lock(view.mutex);
    return {
        row_count(view),    view.selected,  view.row_height, view.columns.empty() ? 0 : width_of(*view.columns.front()),
        view.font_name,     view.font_size, view.border,     view.vertical_bar,
        view.horizontal_bar};
}

bool select_as_person(DataView &view, long position) {
    t_rowref row;
    {
        std::lock_guard lock(view.mutex);
        row = row_at(view, position);
        if (!row)
            return false;
        view.selected = position;
    }
    ask_repaint(view);
    if (view.client && !view.columns.empty())
        object_method(view.client, gensym("selected"), view.columns.front()->name, row);
    return true;
}

DrawList paint_row(DataView &view, PatcherView &patcher_view, long position, long width) {
    t_rowref row;
    long height;
    bool selected;
    {
        std::lock_guard lock(view.mutex);
        row = row_at(view, position);
        height = view.row_height;
        selected = position == view.selected;
    }
    if (!row || !view.client)
        return {};
    t_jgraphics context;
    patcher_view.context = &context;
    for (const Column *column : view.columns) {
        const bool fills = view.autosize_right_column && column == view.columns.back() && width > 0;
        const long cell = std::min(fills ? width : width_of(*column), column->max_width);
        width -= cell;
        if (column->custom_paint)
            object_method(view.client, column->custom_paint, &patcher_view, column->name, row, cell, height, selected);
    }
    patcher_view.context = nullptr;
    return std::move(context.drawn);
}

} // namespace maxhost

using namespace maxhost;

void *jdataview_new(void) {
    trace(trace_view, "jdataview_new");
    auto *view = guarded("jdataview_new", static_cast<DataView *>(nullptr), create<DataView>);
    if (view)
        view->font_name = fontinfo_getname(-1);
    return view;
}

void jdataview_setclient(t_object *dv, t_object *client) {
    trace(trace_view, "jdataview_setclient", client);
    DataView *view = expect_view(dv, "jdataview_setclient");
    if (!view)
        return;
    view->client = client;
    if (BoxState *state = box_state(client)) { // a view in a box starts with the box's font
        guarded("jdataview_setclient", [&] { state->views.push_back(view); });
        view->font_name = state->font_name;
        view->font_size = state->font_size;
    }
}

void jdataview_setborderthickness(t_object *dv, long val) {
    trace(trace_view, "jdataview_setborderthickness", val);
    if (DataView *view = expect_view(dv, "jdataview_setborderthickness"))
        view->border = val;
}

t_max_err jdataview_setscrollvisible(t_object *x, long vbar, long hbar) {
    trace(trace_view, "jdataview_setscrollvisible", vbar, hbar);
    DataView *view = expect_view(x, "jdataview_setscrollvisible");
    if (!view)
        return MAX_ERR_INVALID_PTR;
    view->vertical_bar = vbar != 0;
    view->horizontal_bar = hbar != 0;
    return MAX_ERR_NONE;
}

void jdataview_setheight(t_object *dv, long height) {
    trace(trace_view, "jdataview_setheight", height);
    DataView *view = expect_view(dv, "jdataview_setheight");
    if (!view)
        return;
    {
        std::lock_guard lock(view->mutex);
        view->row_height = std::clamp(height, 1L, 10000L);
    }
    ask_repaint(*view);
}

void jdataview_setautosizerightcolumn(t_object *dv, long way) {
    trace(trace_view, "jdataview_setautosizerightcolumn", way);
    if (DataView *view = expect_view(dv, "jdataview_setautosizerightcolumn"))
        view->autosize_right_column = way != 0;
}

void jdataview_setdragenabled(t_object *dv, long way) {
    trace(trace_view, "jdataview_setdragenabled", way);
    if (DataView *view = expect_view(dv, "jdataview_setdragenabled"))
        view->drag_enabled = way != 0;
}

void jdataview_setcolumnheaderheight(t_object *dv, double height) {
    trace(trace_view, "jdataview_setcolumnheaderheight", height);
    if (DataView *view = expect_view(dv, "jdataview_setcolumnheaderheight"))
        view->header_height = height;
}

void jdataview_setfontname(t_object *dv, t_symbol *fontname) {
    trace(trace_view, "jdataview_setfontname", fontname);
    DataView *view = expect_view(dv, "jdataview_setfontname");
    if (!view || !at_door(fontname, "jdataview_setfontname", "no name"))
        return;
    {
        std::lock_guard lock(view->mutex);
        view->font_name = fontname;
    }
    ask_repaint(*view);
}

void jdataview_setfontsize(t_object *dv, double fsize) {
    trace(trace_view, "jdataview_setfontsize", fsize);
    DataView *view = expect_view(dv, "jdataview_setfontsize");
    if (!view)
        return;
    {
        std::lock_guard lock(view->mutex);
        view->font_size = fsize;
    }
    ask_repaint(*view);
}

t_object *jdataview_addcolumn(t_object *dv, t_symbol *name, t_symbol *before, short unused) {
    trace(trace_view, "jdataview_addcolumn", name, before, static_cast<int>(unused));
    DataView *view = expect_view(dv, "jdataview_addcolumn");
    if (!view || !at_door(name, "jdataview_addcolumn", "no name"))
        return nullptr;
    return guarded("jdataview_addcolumn", static_cast<t_object *>(nullptr), [&] {
        view->columns.reserve(view->columns.size() + 1);
        auto *column = create<Column>();
        column->name = name;
        const auto is_before = [&](const Column *each) { return each->name == before; };
        view->columns.insert(std::find_if(view->columns.begin(), view->columns.end(), is_before), column);
        return &column->c_obj;
    });
}

void jcolumn_setwidth(t_object *col, long width) {
    trace(trace_view, "jcolumn_setwidth", width);
    if (Column *column = expect_column(col, "jcolumn_setwidth"))
        column->width = width;
}

void jcolumn_setmaxwidth(t_object *col, long width) {
    trace(trace_view, "jcolumn_setmaxwidth", width);
    if (Column *column = expect_column(col, "jcolumn_setmaxwidth"))
        column->max_width = width;
}

void jcolumn_setcustompaint(t_object *col, t_symbol *msg) {
    trace(trace_view, "jcolumn_setcustompaint", msg);
    if (Column *column = expect_column(col, "jcolumn_setcustompaint"))
        column->custom_paint = msg;
}

void jdataview_patchervis(t_object *dv, t_object *pv, t_object *box) {
    trace(trace_view, "jdataview_patchervis", pv, box);
    DataView *view = expect_view(dv, "jdataview_patchervis");
    if (view && expect<PatcherView>(pv, "jdataview_patchervis"))
        guarded("jdataview_patchervis", [&] { view->shown_in.push_back(pv); });
}

void jdataview_patcherinvis(t_object *dv, t_object *pv) {
    trace(trace_view, "jdataview_patcherinvis", pv);
    if (DataView *view = expect_view(dv, "jdataview_patcherinvis"))
        std::erase(view->shown_in, pv);
}

void jdataview_clear(t_object *dv) {
    trace(trace_view, "jdataview_clear");
    DataView *view = expect_view(dv, "jdataview_clear");
    if (!view)
        return;
    {
        std::lock_guard lock(view->mutex);
        view->counted_rows = 0;
        view->other_rows.clear();
        view->selected = 0;
    }
    ask_repaint(*view);
}

void jdataview_addrows(t_object *dv, long count, t_rowref *rrs) {
    trace(trace_view, "jdataview_addrows", count);
    DataView *view = expect_view(dv, "jdataview_addrows");
    if (!view || !at_door(count >= 0 && (rrs || count == 0), "jdataview_addrows", "no row ids"))
        return;
    {
        std::lock_guard lock(view->mutex);
        guarded("jdataview_addrows", [&] { add_rows(*view, {rrs, static_cast<size_t>(count)}); });
    }
    ask_repaint(*view);
}

void jdataview_redrawcell(t_object *dv, t_symbol *colname, t_rowref rr) {
    trace(trace_view, "jdataview_redrawcell", colname, reinterpret_cast<t_ptr_int>(rr));
    DataView *view = expect_view(dv, "jdataview_redrawcell");
    if (view && is_row(*view, rr))
        ask_repaint(*view);
}

void jdataview_selectcell(t_object *dv, t_symbol *colname, t_rowref rr) {
    trace(trace_view, "jdataview_selectcell", colname, reinterpret_cast<t_ptr_int>(rr));
    DataView *view = expect_view(dv, "jdataview_selectcell");
    if (!view)
        return;
    {
        std::lock_guard lock(view->mutex);
        view->selected = position_of(*view, rr);
    }
    ask_repaint(*view);
}
