// The comment on the canvas.
#include "commentwidget.h"

void CommentWidget::paint_box(QPainter &painter, const QRectF &rect) {
    const Look look = this->look();
    QColor behind = described_color(box(), "bgcolor");
    if (behind.isValid() && behind.alphaF() > 0)
        paint_rounded(painter, rect, 4 * zoom(), behind, Qt::transparent);
    else
        behind = look.canvas;
    const QColor color = described_color(box(), "textcolor");
    painter.setPen(readable_on(color.isValid() ? color : look.text, behind));
    constexpr Qt::Alignment sides[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    const long side = std::clamp(described_number(box(), "textjustification"), 0L, 2L);
    const QRectF inside = rect.adjusted(3 * zoom(), 2 * zoom(), -zoom(), 0);
    painter.drawText(inside, static_cast<int>(sides[side] | Qt::AlignTop) | Qt::TextWordWrap | Qt::TextDontClip,
                     shown_text(box()));
}
