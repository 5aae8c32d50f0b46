// A box that is pressed.
#include "pressablewidget.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace {

constexpr int flash_time = 150; // milliseconds

} // namespace

PressableWidget::PressableWidget(t_object *box, QWidget *canvas) : BoxWidget(box, canvas) {
    keep_focus();
    light_.setSingleShot(true);
    light_.setInterval(flash_time);
    connect(&light_, &QTimer::timeout, this, [this] { update(); });
}

void PressableWidget::activate() { maxhost::click_box(box()); }

void PressableWidget::flash() {
    if (isVisible())
        light_.start();
    update();
}

void PressableWidget::set_pressed(bool pressed) {
    pressed_ = pressed;
    update();
}

// The box may be gone after its click, and this with it.
void PressableWidget::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    set_pressed(true);
    activate();
}

void PressableWidget::mouseReleaseEvent(QMouseEvent *) { set_pressed(false); }

void PressableWidget::keyPressEvent(QKeyEvent *event) {
    const int key = event->key();
    if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter)
        return BoxWidget::keyPressEvent(event);
    flash();
    activate();
}
