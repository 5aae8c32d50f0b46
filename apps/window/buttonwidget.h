// The button on the canvas: it flashes when a bang goes out.
#pragma once

#include "pressablewidget.h"

class ButtonWidget : public PressableWidget {
    Q_OBJECT

  public:
    using PressableWidget::PressableWidget;
    void refresh() override { flash(); }

  protected:
    void paint_box(QPainter &painter, const QRectF &rect) override;
};
