// The button on the canvas.
#include "buttonwidget.h"

void ButtonWidget::paint_box(QPainter &painter, const QRectF &rect) {
    const Look look = this->look();
    paint_rounded(painter, rect, 4 * zoom(), look.box, look.box_border);
    const double radius = 0.36 * std::min(rect.width(), rect.height());
    const bool lit = is_lit() || is_pressed();
    painter.setPen(QPen(lit ? look.accent : look.muted, 1.6 * zoom()));
    painter.setBrush(lit ? QBrush(look.accent) : QBrush(Qt::NoBrush));
    painter.drawEllipse(rect.center(), radius, radius);
}
