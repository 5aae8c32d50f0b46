// The view of a list.
#include "listview.h"

#include <algorithm>
#include <cmath>

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

#include "look.h"

using namespace maxhost;

namespace {

constexpr long largest_section = 1'000'000; // Qt takes not much more

// A measure of the patcher as it is shown.
int zoomed(long measure, double zoom) {
    return static_cast<int>(std::clamp(std::lround(static_cast<double>(measure) * zoom), 1L, largest_section));
}

} // namespace

ListView::ListView(t_object *box, t_object *patcher_view, QWidget *parent)
    : QTableView(parent), model_(box), delegate_(patcher_view, this) {
    setItemDelegate(&delegate_);
    setModel(&model_);
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false); // the tabulator goes on to the next box
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    horizontalHeader()->hide();
    horizontalHeader()->setMinimumSectionSize(1);
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    take_colors();
}

// What is selected is for the plug-in to show.
void ListView::take_colors() {
    const Look look = look_of(parentWidget()->palette());
    QPalette colors = parentWidget()->palette();
    colors.setColor(QPalette::Base, look.paper);
    colors.setColor(QPalette::Highlight, Qt::transparent);
    setPalette(colors);
}

void ListView::refresh(double zoom) {
    ViewState state{};
    data_view_state(model_.box(), state);
    zoom_ = zoom;
    delegate_.set_cells(state.column_width, zoom);
    const int height = zoomed(state.row_height, zoom);
    if (verticalHeader()->defaultSectionSize() != height)
        verticalHeader()->setDefaultSectionSize(height);
    verticalScrollBar()->setSingleStep(height);
    column_width_ = zoomed(state.column_width, zoom);
    setVerticalScrollBarPolicy(state.vertical_bar ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    fit_column();
    model_.set_rows(state.rows);
    if (state.selected != selected_) {
        selected_ = state.selected;
        const QModelIndex index = selected_ > 0 ? model_.index(static_cast<int>(selected_) - 1, 0) : QModelIndex();
        setCurrentIndex(index);
        updateGeometries(); // the rows may be new to the scroll bar
        scrollTo(index);
    }
    viewport()->update();
}

// A larger view leaves room beside the column, a smaller one shows what fits.
void ListView::fit_column() {
    horizontalHeader()->resizeSection(0, std::clamp(column_width_, 1, std::max(1, viewport()->width())));
}

void ListView::resizeEvent(QResizeEvent *event) {
    QTableView::resizeEvent(event);
    fit_column();
}

void ListView::mousePressEvent(QMouseEvent *event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid())
        click_row(model_.box(), index.row() + 1);
}

int ListView::rows_in_a_page() const {
    return std::max(1, viewport()->height() / std::max(1, verticalHeader()->defaultSectionSize()));
}

int ListView::row_after(int key, int row, int last) const {
    switch (key) {
    case Qt::Key_Up:
        return row - 1;
    case Qt::Key_Down:
        return row + 1;
    case Qt::Key_PageUp:
        return row - rows_in_a_page();
    case Qt::Key_PageDown:
        return row + rows_in_a_page();
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return last;
    default:
        return -1;
    }
}

// The first key goes to the first row.
void ListView::keyPressEvent(QKeyEvent *event) {
    ViewState now{}; // the view hears of the last key's effect only when the event is over
    data_view_state(model_.box(), now);
    const int last = static_cast<int>(now.rows) - 1, row = static_cast<int>(now.selected) - 1;
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        click_row(model_.box(), now.selected); // nothing when none is
        return;
    }
    static const QList<int> moves{Qt::Key_Up,       Qt::Key_Down, Qt::Key_PageUp,
                                  Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
    if (!moves.contains(key))
        return event->ignore();
    if (last >= 0)
        click_row(model_.box(), std::clamp(row_after(key, row, last), 0, last) + 1);
}
