// The data view: a model of columns, rows and a selection, painted by its client.
#pragma once

#include <mutex>
#include <vector>

#include "jdataview.h"
#include "kernel/classes.h"
#include "ui/graphics.h"
#include "ui/viewstate.h"

namespace maxhost {

struct PatcherView;

struct Column : t_jcolumn {
    t_symbol *name = nullptr;
    long width = 50;
    long max_width = 100;
    t_symbol *custom_paint = nullptr; // message to the client

    static Class *host_class();
    static constexpr const char *kind_name = "column";
};

struct DataView : t_object {
    // Rows, selection, row height and font change on both threads; `mutex` is never held over a call to the client.
    std::mutex mutex;
    // Rows at the front whose ids are their positions, as most are, are only counted: they need no memory, so that a
    // view of nothing else always has the rows that its client added.
    size_t counted_rows = 0;
    std::vector<t_rowref> other_rows;
    long selected = 0; // position, 1-based; 0: none

    t_object *client = nullptr;
    std::vector<Column *> columns;
    std::vector<t_object *> shown_in; // patcher views
    long border = 1;
    bool vertical_bar = true;
    bool horizontal_bar = true;
    long row_height = 16;
    double header_height = 16;
    bool autosize_right_column = false;
    bool drag_enabled = false;
    t_symbol *font_name = nullptr;
    double font_size = 12;

    ~DataView();
    static Class *host_class();
    static constexpr const char *kind_name = "data view";
};

ViewState view_state(DataView &view);

// Selects the row at a position as a person does and sends "selected" to the client; false when there is no such row.
bool select_as_person(DataView &view, long position);

// Has the client paint the cells of the row at a position; empty when there is no such row. With a `width`, that of the
// whole row, the right column fills what the others leave, if it is to.
DrawList paint_row(DataView &view, PatcherView &patcher_view, long position, long width);

} // namespace maxhost
