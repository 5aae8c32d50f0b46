// The toggle on the canvas.
#include "togglewidget.h"

bool ToggleWidget::is_on() const {
    const std::vector<t_atom> value = maxhost::shown_value(box());
    return !value.empty() && atom_getlong(value.data()) != 0;
}

void ToggleWidget::paint_box(QPainter &painter, const QRectF &rect) {
    const Look look = this->look();
    paint_rounded(painter, rect, 4 * zoom(), is_pressed() ? look.pressed : look.box, look.box_border);
    const double inset = 0.26 * std::min(rect.width(), rect.height());
    const QRectF cross = rect.adjusted(inset, inset, -inset, -inset);
    QColor color = is_on() ? look.accent : look.muted;
    color.setAlphaF(is_on() ? 1.0F : 0.35F);
    painter.setPen(QPen(color, (is_on() ? 2.4 : 1.6) * zoom(), Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.topRight(), cross.bottomLeft());
}
