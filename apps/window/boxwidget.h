// A box on the canvas: what every kind of box has, its place, its inlets and outlets, its hint and its focus.
#pragma once

#include <QAccessible>
#include <QHash>
#include <QPainter>
#include <QWidget>

#include "look.h"
#include "values.h"

// Boxes lie where their patcher has them, times the zoom. The widget is higher than the box by the inlets above it and
// the outlets below it.
class BoxWidget : public QWidget {
    Q_OBJECT

  public:
    BoxWidget(t_object *box, QWidget *canvas);

    t_object *box() const { return box_; }

    // Puts the box in its place. Without `ports` its inlets and outlets do not show.
    void place(const QRectF &rect, double zoom, bool ports);

    const QRectF &placed_at() const { return place_; } // in the patcher

    // Where cords begin and end, on the canvas; a number is counted from the left.
    QPointF inlet_point(long inlet) const;
    QPointF outlet_point(long outlet) const;

    // The box is going, or the widget: nothing is said to the box any more.
    void retire();

    // What the box shows has changed.
    virtual void refresh() { update(); }

    // What a person means by a click, or the space bar.
    virtual void activate() {}

    // For assistive programs: what it is, what it says, and whether it is on.
    virtual QAccessible::Role role() const { return QAccessible::StaticText; }
    virtual QString spoken() const;
    virtual bool is_on() const { return false; }

  Q_SIGNALS:
    void assisted(const QString &text);    // empty: no more
    void opened(t_object *patcher_in_box); // a person wants to see the patcher in the box

  protected:
    virtual void paint_box(QPainter &painter, const QRectF &rect) = 0;
    virtual void place_content() {} // after place

    QRectF box_rect() const; // in the widget
    double zoom() const { return zoom_; }
    Look look() const { return look_of(palette()); }
    QFont font_of_box() const; // zoomed
    void keep_focus() { setFocusPolicy(Qt::StrongFocus); }

    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

  private:
    bool is_set_since(const char *attribute, std::vector<t_atom> &values) const;
    void keep_first_value(const char *attribute);
    QPointF port_point(long at, long count, bool inlet) const; // in the widget
    void paint_ports(QPainter &painter, long count, bool inlets) const;
    long port_at(const QPointF &point, bool inlets) const; // -1: none

    t_object *box_;
    QRectF place_;
    double zoom_ = 1;
    int margin_ = 0; // above and below the box
    QString assistance_;
    QHash<QByteArray, std::string> first_values_; // of the font's attributes
};

// Draws a rounded box.
void paint_rounded(QPainter &painter, const QRectF &rect, double radius, const QBrush &fill, const QColor &border);

// Draws a text in a box, in one line with an ellipsis or, where there is room for more, in several. Black texts stay
// readable on the colour.
void paint_text(QPainter &painter, const QRectF &rect, const QString &text, const QColor &color);
