// A box that is pressed: with the mouse, the space bar or return.
#pragma once

#include <QTimer>

#include "boxwidget.h"

class PressableWidget : public BoxWidget {
    Q_OBJECT

  public:
    PressableWidget(t_object *box, QWidget *canvas);
    void activate() override;
    QAccessible::Role role() const override { return QAccessible::Button; }

  protected:
    bool is_pressed() const { return pressed_; }
    bool is_lit() const { return light_.isActive(); }
    void flash(); // lit for a moment

    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

  private:
    void set_pressed(bool pressed);

    bool pressed_ = false;
    QTimer light_;
};
