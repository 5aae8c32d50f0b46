// The text field on the canvas: what is typed goes out with return or, in a field of several lines, when it is left.
#pragma once

#include <QPlainTextEdit>

#include "boxwidget.h"

class TextFieldWidget : public BoxWidget {
    Q_OBJECT

  public:
    TextFieldWidget(t_object *box, QWidget *canvas);
    void refresh() override;
    QAccessible::Role role() const override { return QAccessible::Grouping; }
    QString spoken() const override { return tr("text field"); }

  protected:
    void paint_box(QPainter &painter, const QRectF &rect) override;
    void place_content() override;
    bool eventFilter(QObject *watched, QEvent *event) override; // of the field

  private:
    void enter();

    const bool return_enters_;
    QPlainTextEdit *field_;
};
