// The delegate of a list.
#include "celldelegate.h"

#include <algorithm>
#include <cmath>

#include "drawlist.h"
#include "listmodel.h"
#include "look.h"

namespace {

// How far letters may hang into the row below, whose paint does not hide them; images end with their row.
int overhang(const maxhost::DrawList &list, double zoom) {
    const bool has_text = std::any_of(list.begin(), list.end(), [](const maxhost::DrawRecord &record) {
        return record.kind == maxhost::DrawRecord::Kind::text;
    });
    return has_text ? static_cast<int>(std::ceil(2 * zoom)) : 0;
}

} // namespace

void CellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const {
    const auto *model = static_cast<const ListModel *>(index.model());
    const maxhost::DrawList list = maxhost::painted_row(model->box(), index.row() + 1, patcher_view_, width_);
    const Look look = look_of(option.palette);
    painter->save();
    painter->setClipRect(option.rect.adjusted(0, 0, 0, overhang(list, zoom_)));
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
