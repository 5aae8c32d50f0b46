// The rows of a box's data view.
#include "listmodel.h"

#include <algorithm>
#include <limits>

#include "drawlist.h"

void ListModel::set_rows(long rows) {
    const int now = static_cast<int>(std::clamp(rows, 0L, static_cast<long>(std::numeric_limits<int>::max() - 1)));
    if (now > rows_) {
        beginInsertRows({}, rows_, now - 1);
        rows_ = now;
        endInsertRows();
    } else if (now < rows_) {
        beginRemoveRows({}, now, rows_ - 1);
        rows_ = now;
        endRemoveRows();
    }
}

int ListModel::rowCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : rows_; }

int ListModel::columnCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : 1; }

QVariant ListModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || role != Qt::DisplayRole)
        return {};
    return text_of(maxhost::painted_row(box_, index.row() + 1));
}
