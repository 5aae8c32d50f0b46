// The rows of a box's data view, for Qt's views.
#pragma once

#include <QAbstractTableModel>

#include "embed/host.h"

// Keeps the number of rows that the views know of; everything else is asked of the host when it is needed.
class ListModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    // The box outlives the model.
    explicit ListModel(t_object *box) : box_(box) {}

    // Tells the views how many rows there are now.
    void set_rows(long rows);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;

    // Texts of the row, for assistive programs; what is seen is drawn by the plug-in.
    QVariant data(const QModelIndex &index, int role) const override;

    t_object *box() const { return box_; }

  private:
    t_object *box_;
    int rows_ = 0;
};
