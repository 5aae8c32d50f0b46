// A box with a data view on the canvas.
#include "listwidget.h"

#include <QEvent>

using namespace maxhost;

ListWidget::ListWidget(t_object *box, t_object *patcher_view, QWidget *canvas)
    : BoxWidget(box, canvas), view_(box, patcher_view, this) {
    view_.setAccessibleName(described_text(box, "varname", text_of(class_of_box(box))));
    setFocusProxy(&view_);
}

void ListWidget::refresh() {
    view_.refresh(zoom());
    update();
}

void ListWidget::changeEvent(QEvent *event) {
    BoxWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        view_.take_colors();
}

void ListWidget::place_content() {
    ViewState state{};
    data_view_state(box(), state);
    const int border = static_cast<int>(std::clamp(state.border, 0L, 100L));
    view_.setGeometry(box_rect().toAlignedRect().adjusted(border, border, -border, -border));
}

void ListWidget::paint_box(QPainter &painter, const QRectF &rect) {
    ViewState state{};
    data_view_state(box(), state);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(rect.toAlignedRect(), state.border > 0 ? look().paper_border : look().paper);
}
