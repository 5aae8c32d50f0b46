// Draw lists on a painter.
#include "drawlist.h"

#include "look.h"
#include "values.h"

using maxhost::DrawRecord;

namespace {

void draw_text(QPainter &painter, const DrawRecord &record, const QColor &background) {
    painter.setFont(box_font(record.font_name ? text_of(record.font_name) : QString(), record.font_size));
    painter.setPen(readable_on(color_of(record.color), background));
    painter.drawText(QPointF(record.rect.x, record.rect.y), QString::fromStdString(record.text));
}

void draw_image(QPainter &painter, const DrawRecord &record) {
    if (!record.image)
        return;
    const maxhost::Pixels pixels = maxhost::pixels_of(*record.image);
    const QImage image(pixels.rgba, pixels.width, pixels.height, pixels.width * 4, QImage::Format_RGBA8888);
    painter.drawImage(rect_of(record.rect), image, rect_of(record.source));
}

} // namespace

void replay(QPainter &painter, const maxhost::DrawList &list, const QColor &background) {
    painter.setLayoutDirection(Qt::LayoutDirectionAuto); // a text goes by its own direction
    for (const DrawRecord &record : list) {
        switch (record.kind) {
        case DrawRecord::Kind::fill:
            painter.fillRect(rect_of(record.rect), color_of(record.color));
            break;
        case DrawRecord::Kind::text:
            draw_text(painter, record, background);
            break;
        case DrawRecord::Kind::image:
            draw_image(painter, record);
            break;
        }
    }
}

QString text_of(const maxhost::DrawList &list) {
    QString text;
    for (const DrawRecord &record : list)
        if (record.kind == DrawRecord::Kind::text)
            text += (text.isEmpty() ? "" : " ") + QString::fromStdString(record.text);
    return text;
}
