// The object box on the canvas, of every class without a widget of its own: its text. One with a patcher in it opens.
#pragma once

#include "boxwidget.h"

class ObjectWidget : public BoxWidget {
    Q_OBJECT

  public:
    ObjectWidget(t_object *box, QWidget *canvas);
    void activate() override;
    QAccessible::Role role() const override;
    QString spoken() const override;

  protected:
    void paint_box(QPainter &painter, const QRectF &rect) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
