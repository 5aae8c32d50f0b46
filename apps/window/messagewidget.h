// The message box on the canvas: a click sends its text.
#pragma once

#include "pressablewidget.h"

class MessageWidget : public PressableWidget {
    Q_OBJECT

  public:
    using PressableWidget::PressableWidget;
    QString spoken() const override { return shown_text(box()); }

  protected:
    void paint_box(QPainter &painter, const QRectF &rect) override;
};
