// The object box on the canvas.
#include "objectwidget.h"

#include <QKeyEvent>

using namespace maxhost;

ObjectWidget::ObjectWidget(t_object *box, QWidget *canvas) : BoxWidget(box, canvas) {
    if (patcher_in(box))
        keep_focus();
}

QAccessible::Role ObjectWidget::role() const {
    return patcher_in(box()) ? QAccessible::Button : QAccessible::StaticText;
}

// What was typed; of a class that shows itself in its own way in the real host, its name.
QString ObjectWidget::spoken() const {
    const QString name = described_text(box(), "maxclass", text_of(class_of_box(box())));
    return described_text(box(), "text", name);
}

void ObjectWidget::activate() {
    if (t_object *inner = patcher_in(box()))
        Q_EMIT opened(inner);
}

void ObjectWidget::paint_box(QPainter &painter, const QRectF &rect) {
    const Look look = this->look();
    const bool inert = class_of_box(box()) == gensym("inert");
    paint_rounded(painter, rect, 3 * zoom(), inert ? look.canvas : look.box, Qt::transparent);
    painter.setPen(QPen(look.box_border, 1, inert ? Qt::DashLine : Qt::SolidLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect, 3 * zoom(), 3 * zoom());
    if (patcher_in(box())) // it opens: an edge of its own
        painter.fillRect(QRectF(rect.left() + 2, rect.top() + 3, 2.5 * zoom(), rect.height() - 6), look.accent);
    paint_text(painter, rect.adjusted(7 * zoom(), 0, -4 * zoom(), 0), spoken(), inert ? look.muted : look.text);
}

void ObjectWidget::mouseDoubleClickEvent(QMouseEvent *) { activate(); }

void ObjectWidget::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space)
        activate();
    else
        BoxWidget::keyPressEvent(event);
}
