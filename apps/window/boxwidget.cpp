// A box on the canvas.
#include "boxwidget.h"

#include <cmath>

#include <QEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>

using namespace maxhost;

namespace {

constexpr double port_margin = 4; // at zoom 1
constexpr double port_width = 9;
constexpr double first_port = 9; // from the box's edge to the middle of a port
constexpr double reach = 7;      // how far from a port a person may point

} // namespace

BoxWidget::BoxWidget(t_object *box, QWidget *canvas) : QWidget(canvas), box_(box) {
    setMouseTracking(true);
    setAttribute(Qt::WA_NoSystemBackground);
    setAccessibleDescription(described_text(box, "hint"));
    keep_first_value("fontname");
    keep_first_value("fontsize");
}

void BoxWidget::place(const QRectF &rect, double zoom, bool ports) {
    place_ = rect;
    zoom_ = zoom;
    margin_ = ports ? static_cast<int>(std::ceil(port_margin * zoom)) : 0;
    const QRectF zoomed(rect.topLeft() * zoom, rect.size() * zoom);
    setGeometry(zoomed.toAlignedRect().adjusted(0, -margin_, 0, margin_));
    place_content();
    refresh();
}

void BoxWidget::retire() {
    disconnect();
    for (QObject *child : findChildren<QObject *>()) {
        child->disconnect(this);
        child->removeEventFilter(this);
    }
    hide();
}

QRectF BoxWidget::box_rect() const { return QRectF(rect()).adjusted(0.5, margin_ + 0.5, -0.5, -margin_ - 0.5); }

QFont BoxWidget::font_of_box() const {
    t_object *patcher = jbox_get_patcher(box_);
    QString family = described_text(patcher, "default_fontname", "Arial");
    double size = described_size(patcher, "default_fontsize", 12);
    family = described_text(box_, "fontname", family);
    size = described_size(box_, "fontsize", size);
    std::vector<t_atom> values; // a message may have set them since
    if (is_set_since("fontname", values))
        family = text_of(atom_getsym(values.data()));
    if (is_set_since("fontsize", values))
        size = atom_getfloat(values.data());
    QFont font = box_font(family, size * zoom_);
    const long face = described_number(box_, "fontface");
    font.setBold((face & 1) != 0);
    font.setItalic((face & 2) != 0);
    return font;
}

// The attribute has another value than the box was made with.
bool BoxWidget::is_set_since(const char *attribute, std::vector<t_atom> &values) const {
    return has_attribute(box_, gensym(attribute)) && read_attribute(box_, gensym(attribute), values) == MAX_ERR_NONE &&
           !values.empty() && print_atoms(values) != first_values_.value(attribute);
}

void BoxWidget::keep_first_value(const char *attribute) {
    std::vector<t_atom> values;
    if (has_attribute(box_, gensym(attribute)) && read_attribute(box_, gensym(attribute), values) == MAX_ERR_NONE)
        first_values_[attribute] = print_atoms(values);
}

QString BoxWidget::spoken() const { return text_of(class_of_box(box_)); }

// ---- inlets and outlets

QPointF BoxWidget::port_point(long at, long count, bool inlet) const {
    const QRectF rect = box_rect();
    const double edge = std::min(first_port * zoom_, rect.width() / 2);
    const double along = count > 1 ? static_cast<double>(at) / static_cast<double>(count - 1) : 0;
    return {rect.left() + edge + along * (rect.width() - 2 * edge), inlet ? rect.top() : rect.bottom()};
}

QPointF BoxWidget::inlet_point(long inlet) const { return mapToParent(port_point(inlet, inlets_of(box_), true)); }

QPointF BoxWidget::outlet_point(long outlet) const { return mapToParent(port_point(outlet, outlets_of(box_), false)); }

void BoxWidget::paint_ports(QPainter &painter, long count, bool inlets) const {
    painter.setPen(Qt::NoPen);
    painter.setBrush(look().port);
    const QSizeF size(port_width * zoom_, 3 * zoom_);
    for (long i = 0; i < count; ++i) {
        const QPointF middle = port_point(i, count, inlets);
        const double top = inlets ? middle.y() - size.height() + zoom_ : middle.y() - zoom_;
        painter.drawRoundedRect(QRectF({middle.x() - size.width() / 2, top}, size), 1.5 * zoom_, 1.5 * zoom_);
    }
}

long BoxWidget::port_at(const QPointF &point, bool inlets) const {
    const long count = inlets ? inlets_of(box_) : outlets_of(box_);
    for (long i = 0; i < count && margin_ > 0; ++i) {
        const QPointF away = port_point(i, count, inlets) - point;
        if (std::abs(away.x()) <= reach * zoom_ && std::abs(away.y()) <= margin_ + 1)
            return i;
    }
    return -1;
}

// ---- events

void BoxWidget::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font_of_box());
    paint_box(painter, box_rect());
    if (margin_ > 0) {
        paint_ports(painter, inlets_of(box_), true);
        paint_ports(painter, outlets_of(box_), false);
    }
    if (hasFocus() || (focusProxy() && focusProxy()->hasFocus())) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(look().accent, 1.5));
        painter.drawRoundedRect(box_rect(), 4 * zoom_, 4 * zoom_);
    }
}

void BoxWidget::mouseMoveEvent(QMouseEvent *event) {
    const long inlet = port_at(event->position(), true), outlet = port_at(event->position(), false);
    QString text = described_text(box_, "annotation");
    if (inlet >= 0)
        text = QString::fromStdString(assistance(box_, true, inlet));
    else if (outlet >= 0)
        text = QString::fromStdString(assistance(box_, false, outlet));
    if (text != assistance_)
        Q_EMIT assisted(text);
    assistance_ = text;
}

void BoxWidget::leaveEvent(QEvent *) {
    if (!assistance_.isEmpty())
        Q_EMIT assisted({});
    assistance_.clear();
}

bool BoxWidget::event(QEvent *event) {
    if (event->type() == QEvent::ToolTip) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), described_text(box_, "hint"), this);
        return true;
    }
    return QWidget::event(event);
}

void BoxWidget::focusInEvent(QFocusEvent *event) {
    QWidget::focusInEvent(event);
    update();
}

void BoxWidget::focusOutEvent(QFocusEvent *event) {
    QWidget::focusOutEvent(event);
    update();
}

// ---- painting

void paint_rounded(QPainter &painter, const QRectF &rect, double radius, const QBrush &fill, const QColor &border) {
    painter.setPen(QPen(border, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(rect, radius, radius);
}

void paint_text(QPainter &painter, const QRectF &rect, const QString &text, const QColor &color) {
    painter.setPen(color);
    const QFontMetricsF metrics(painter.font());
    if (rect.height() >= 1.9 * metrics.height())
        return painter.drawText(rect, static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap), text);
    const QString line = metrics.elidedText(text.simplified(), Qt::ElideRight, rect.width());
    painter.drawText(rect, static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine), line);
}
