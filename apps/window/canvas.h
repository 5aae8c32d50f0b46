// The canvas: the boxes of a patcher and its cords.
#pragma once

#include <unordered_map>

#include <QWidget>

#include "boxwidget.h"
#include "hostbridge.h"

class Canvas : public QWidget {
    Q_OBJECT

  public:
    // Shows the patcher in a view of it, as long as the canvas lives. Patcher and bridge outlive it.
    Canvas(t_object *patcher, HostBridge &bridge);
    ~Canvas() override;

    t_object *patcher() const { return patcher_; }

    // The widget of a box; null when the canvas does not show it.
    BoxWidget *widget_of(t_object *box) const;

    double zoom() const { return zoom_; }
    void set_zoom(double zoom);

    // In presentation mode the boxes that are in the presentation show, where it has them, and no cords.
    bool is_presented() const { return presented_; }
    void set_presented(bool presented);

    QSize sizeHint() const override { return extent_; }

  Q_SIGNALS:
    void assisted(const QString &text);
    void opened(t_object *patcher_in_box);

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    void take_over_boxes();
    void place_boxes();
    void order_focus();
    void forget(t_object *box);
    void show_changed(t_object *box);
    BoxWidget *make_widget(t_object *box);
    QRectF place_of(t_object *box, int &unplaced) const;

    t_object *patcher_;
    t_object *view_;
    std::unordered_map<t_object *, BoxWidget *> widgets_;
    double zoom_ = 1;
    bool presented_;
    QSize extent_{1, 1};
};
