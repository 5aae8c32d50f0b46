// The toggle on the canvas: crossed when it is on.
#pragma once

#include "pressablewidget.h"

class ToggleWidget : public PressableWidget {
    Q_OBJECT

  public:
    using PressableWidget::PressableWidget;
    QAccessible::Role role() const override { return QAccessible::CheckBox; }
    bool is_on() const override;

  protected:
    void paint_box(QPainter &painter, const QRectF &rect) override;
};
