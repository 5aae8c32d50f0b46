// The message box on the canvas.
#include "messagewidget.h"

void MessageWidget::paint_box(QPainter &painter, const QRectF &rect) {
    const Look look = this->look();
    const QColor fill = is_pressed() ? look.pressed : look.message;
    QLinearGradient shade(rect.topLeft(), rect.bottomLeft());
    shade.setColorAt(0, fill.lighter(104));
    shade.setColorAt(1, fill.darker(103));
    paint_rounded(painter, rect, 5 * zoom(), shade, is_pressed() ? look.accent : look.message_border);
    paint_text(painter, rect.adjusted(6 * zoom(), 0, -5 * zoom(), 0), shown_text(box()), look.text);
}
