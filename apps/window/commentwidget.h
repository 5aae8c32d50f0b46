// The comment on the canvas: a text to be read.
#pragma once

#include "boxwidget.h"

class CommentWidget : public BoxWidget {
    Q_OBJECT

  public:
    using BoxWidget::BoxWidget;
    QString spoken() const override { return shown_text(box()); }

  protected:
    void paint_box(QPainter &painter, const QRectF &rect) override;
};
