// The delegate of a list: what the plug-in draws for a row is drawn in its cell.
#pragma once

#include <QStyledItemDelegate>

#include "embed/host.h"

class CellDelegate : public QStyledItemDelegate {
    Q_OBJECT

  public:
    // Draws in a patcher view, which outlives the delegate.
    CellDelegate(t_object *patcher_view, QObject *parent) : QStyledItemDelegate(parent), patcher_view_(patcher_view) {}

    // How wide the cells are, in the patcher's pixels, and how large these are shown.
    void set_cells(long width, double zoom) {
        width_ = width;
        zoom_ = zoom;
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

  private:
    t_object *patcher_view_;
    long width_ = 0;
    double zoom_ = 1;
};
