// The number box on the canvas: its number is dragged, typed, or stepped with the arrow keys.
#pragma once

#include <QLineEdit>

#include "boxwidget.h"

class NumberWidget : public BoxWidget {
    Q_OBJECT

  public:
    NumberWidget(t_object *box, QWidget *canvas);
    void activate() override { begin_typing({}); }
    QAccessible::Role role() const override { return QAccessible::SpinBox; }
    QString spoken() const override { return shown_text(box()); }

  protected:
    void paint_box(QPainter &painter, const QRectF &rect) override;
    void place_content() override;
    bool eventFilter(QObject *watched, QEvent *event) override; // of the field: return and escape
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

  private:
    double number() const;
    double step_at(const QPointF &point) const; // of a drag that begins there
    void send(double number);
    void begin_typing(const QString &first);
    void end_typing(bool enter);

    const bool is_float_;
    QLineEdit *field_; // shown while a person types
    bool dragging_ = false, dragged_ = false;
    QPointF press_;
    double number_at_press_ = 0, step_ = 1;
};
