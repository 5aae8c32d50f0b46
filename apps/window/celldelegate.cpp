// The delegate of a list.
#include "celldelegate.h"

#include <cmath>

#include "drawlist.h"
#include "listmodel.h"
#include "look.h"

void CellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const {
    const auto *model = static_cast<const ListModel *>(index.model());
    const auto width = static_cast<long>(std::lround(option.rect.width() / zoom_));
    const maxhost::DrawList list = maxhost::painted_row(model->box(), index.row() + 1, patcher_view_, width);
    const Look look = look_of(option.palette);
    painter->save();
    painter->setClipRect(option.rect);
    painter->translate(option.rect.topLeft());
    painter->scale(zoom_, zoom_);
    replay(*painter, list, look.paper);
    painter->restore();
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        painter->setPen(look.accent);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    }
}
