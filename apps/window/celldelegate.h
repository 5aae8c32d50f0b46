// The delegate of a list: what the plug-in draws for a row is drawn in its cell.
#pragma once

#include <QStyledItemDelegate>

#include "embed/host.h"

class CellDelegate : public QStyledItemDelegate {
    Q_OBJECT

  public:
    // Draws in a patcher view, which outlives the delegate.
    CellDelegate(t_object *patcher_view, QObject *parent) : QStyledItemDelegate(parent), patcher_view_(patcher_view) {}

    void set_zoom(double zoom) { zoom_ = zoom; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

  private:
    t_object *patcher_view_;
    double zoom_ = 1;
};
