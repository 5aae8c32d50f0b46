// The number box on the canvas.
#include "numberwidget.h"

#include <cmath>

#include <QKeyEvent>
#include <QMouseEvent>

using namespace maxhost;

namespace {

constexpr double pixels_a_step = 2;
constexpr double fine_step = 0.01;
constexpr double mark_width = 12; // of the triangle, at zoom 1

} // namespace

NumberWidget::NumberWidget(t_object *box, QWidget *canvas)
    : BoxWidget(box, canvas), is_float_(class_of_box(box) == gensym("flonum")), field_(new QLineEdit(this)) {
    keep_focus();
    field_->setFrame(false);
    field_->setAccessibleName(tr("number"));
    field_->installEventFilter(this);
    field_->hide();
    connect(field_, &QLineEdit::editingFinished, this, [this] { end_typing(true); });
}

double NumberWidget::number() const {
    const std::vector<t_atom> value = shown_value(box());
    return value.empty() ? 0 : atom_getfloat(value.data());
}

void NumberWidget::send(double number) { send_message(box(), number_atoms(number, is_float_)); }

// ---- typing

void NumberWidget::begin_typing(const QString &first) {
    field_->setText(first.isEmpty() ? shown_text(box()) : first);
    if (first.isEmpty())
        field_->selectAll();
    field_->show();
    field_->setFocus();
}

void NumberWidget::end_typing(bool enter) {
    if (field_->isHidden())
        return;
    t_atom atom;
    const bool is_number = parse_number(field_->text().trimmed().toStdString(), atom);
    field_->hide();
    setFocus();
    if (enter && is_number)
        enter_value(box(), {&atom, 1});
}

bool NumberWidget::eventFilter(QObject *watched, QEvent *event) {
    const int key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent *>(event)->key() : 0;
    const bool enters = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (!enters && key != Qt::Key_Escape)
        return BoxWidget::eventFilter(watched, event);
    end_typing(enters);
    return true;
}

void NumberWidget::keyPressEvent(QKeyEvent *event) {
    const QString text = event->text();
    const double step = event->modifiers().testFlag(Qt::ShiftModifier) ? (is_float_ ? fine_step : 10) : 1;
    if (event->key() == Qt::Key_Up)
        send(number() + step);
    else if (event->key() == Qt::Key_Down)
        send(number() - step);
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space)
        begin_typing({});
    else if (text.size() == 1 && QStringLiteral("0123456789-+.").contains(text))
        begin_typing(text);
    else
        BoxWidget::keyPressEvent(event);
}

// ---- dragging

// Whole numbers left of the point, hundredths right of it.
double NumberWidget::step_at(const QPointF &point) const {
    const QString text = shown_text(box());
    const QString whole = text.left(text.indexOf('.') + 1);
    const double left = box_rect().left() + mark_width * zoom() + QFontMetricsF(font_of_box()).horizontalAdvance(whole);
    return is_float_ && point.x() > left ? fine_step : 1;
}

void NumberWidget::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    dragging_ = true;
    dragged_ = false;
    press_ = event->position();
    number_at_press_ = number();
    step_ = step_at(press_);
}

void NumberWidget::mouseMoveEvent(QMouseEvent *event) {
    if (!dragging_)
        return BoxWidget::mouseMoveEvent(event);
    const double steps = std::trunc((press_.y() - event->position().y()) / pixels_a_step);
    dragged_ = dragged_ || steps != 0;
    const double wanted = number_at_press_ + steps * step_;
    if (dragged_ && wanted != number())
        send(wanted);
}

void NumberWidget::mouseReleaseEvent(QMouseEvent *) {
    if (!std::exchange(dragging_, false))
        return;
    update();
    if (dragged_)
        enter_value(box(), {});
    else
        begin_typing({});
}

// ---- looks

void NumberWidget::place_content() {
    field_->setFont(font_of_box());
    field_->setGeometry(box_rect().adjusted(mark_width * zoom() - 2, 2, -2, -1).toRect());
}

void NumberWidget::paint_box(QPainter &painter, const QRectF &rect) {
    const Look look = this->look();
    paint_rounded(painter, rect, 3 * zoom(), dragging_ ? look.pressed : look.paper, look.paper_border);
    const double size = 4 * zoom();
    const QPointF tip(rect.left() + 3 * zoom() + size, rect.center().y());
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.muted);
    painter.drawPolygon(QPolygonF({{tip.x() - size, tip.y() - size}, tip, {tip.x() - size, tip.y() + size}}));
    if (field_->isHidden())
        paint_text(painter, rect.adjusted(mark_width * zoom(), 0, -2 * zoom(), 0), shown_text(box()), look.text);
}
