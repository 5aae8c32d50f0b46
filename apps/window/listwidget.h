// A box with a data view on the canvas.
#pragma once

#include "boxwidget.h"
#include "listview.h"

class ListWidget : public BoxWidget {
    Q_OBJECT

  public:
    // The patcher view outlives the widget.
    ListWidget(t_object *box, t_object *patcher_view, QWidget *canvas);
    void refresh() override;
    QAccessible::Role role() const override { return QAccessible::Grouping; }

  protected:
    void paint_box(QPainter &painter, const QRectF &rect) override;
    void place_content() override;
    void changeEvent(QEvent *event) override;

  private:
    ListView view_;
};
