// The canvas.
#include "canvas.h"

#include <algorithm>
#include <cmath>

#include <QPaintEvent>
#include <QPainterPath>

#include "buttonwidget.h"
#include "commentwidget.h"
#include "listwidget.h"
#include "messagewidget.h"
#include "numberwidget.h"
#include "objectwidget.h"
#include "textfieldwidget.h"
#include "togglewidget.h"

using namespace maxhost;

namespace {

constexpr double room = 15; // beside the outermost boxes

// A box that was made without a place and a size gets one of its own.
constexpr double unplaced_height = 26;
constexpr QSizeF unplaced_list(240, 180);
constexpr QSizeF unplaced_box(140, 22);

QRectF patching_rect(t_object *box) {
    t_rect rect{};
    jbox_get_patching_rect(box, &rect);
    return rect_of(rect);
}

bool is_presented_box(t_object *box) {
    return described_number(box, "presentation") != 0 && !described_rect(box, "presentation_rect").isNull();
}

// From an outlet to an inlet: a curve that leaves downwards and comes from above, or the way through its points.
QPainterPath cord_path(const ShownCord &cord, const QPointF &from, const QPointF &to, double zoom) {
    QPainterPath path(from);
    if (cord.midpoints.empty()) {
        const double down = to.y() - from.y(), aside = std::abs(to.x() - from.x());
        const double bend = down > 0 ? std::max(std::min(down / 2, 60 * zoom), std::min(aside / 6, 30 * zoom))
                                     : (30 * zoom + std::min(-down / 4, 30 * zoom));
        path.cubicTo(from + QPointF(0, bend), to - QPointF(0, bend), to);
        return path;
    }
    for (size_t i = 0; i < cord.midpoints.size(); i += 2)
        path.lineTo(QPointF(cord.midpoints[i], cord.midpoints[i + 1]) * zoom);
    path.lineTo(to);
    return path;
}

} // namespace

Canvas::Canvas(t_object *patcher, HostBridge &bridge)
    : patcher_(patcher), view_(open_patcher_view(patcher)),
      presented_(described_number(patcher, "openinpresentation") != 0) {
    connect(&bridge, &HostBridge::box_goes, this, &Canvas::forget);
    connect(&bridge, &HostBridge::box_changed, this, &Canvas::show_changed);
    connect(&bridge, &HostBridge::patcher_changed, this, [this](t_object *changed) {
        if (changed == patcher_)
            take_over_boxes();
    });
    setAccessibleName(tr("patcher"));
    setFocusPolicy(Qt::ClickFocus); // so that a click beside the boxes ends what is typed
    take_over_boxes();
}

Canvas::~Canvas() {
    for (const auto &[box, widget] : widgets_) {
        widget->retire();
        delete widget;
    }
    close_patcher_view(view_);
}

// ---- boxes

BoxWidget *Canvas::widget_of(t_object *box) const {
    const auto found = widgets_.find(box);
    return found == widgets_.end() ? nullptr : found->second;
}

BoxWidget *Canvas::make_widget(t_object *box) {
    const std::string_view name = class_of_box(box)->s_name;
    ViewState state;
    if (data_view_state(box, state))
        return new ListWidget(box, view_, this);
    if (name == "message")
        return new MessageWidget(box, this);
    if (name == "number" || name == "flonum")
        return new NumberWidget(box, this);
    if (name == "button")
        return new ButtonWidget(box, this);
    if (name == "toggle")
        return new ToggleWidget(box, this);
    if (name == "comment")
        return new CommentWidget(box, this);
    if (name == "textfield")
        return new TextFieldWidget(box, this);
    return new ObjectWidget(box, this);
}

void Canvas::take_over_boxes() {
    for (t_object *box : boxes_in(patcher_)) {
        if (widgets_.contains(box))
            continue;
        BoxWidget *widget = widgets_[box] = make_widget(box);
        connect(widget, &BoxWidget::assisted, this, &Canvas::assisted);
        connect(widget, &BoxWidget::opened, this, &Canvas::opened);
        widget->lower(); // the first box lies on top
        if (described_number(box, "background") == 0)
            widget->raise();
    }
    place_boxes();
    order_focus();
}

void Canvas::forget(t_object *box) {
    const auto found = widgets_.find(box);
    if (found == widgets_.end())
        return;
    found->second->retire();
    found->second->deleteLater(); // it may be in the midst of a click
    widgets_.erase(found);
    update();
}

void Canvas::show_changed(t_object *box) {
    BoxWidget *widget = widget_of(box);
    if (!widget)
        return;
    int unplaced = 0;
    const QRectF place = place_of(box, unplaced);
    if (unplaced == 0 && place.toAlignedRect() != widget->placed_at().toAlignedRect())
        place_boxes();
    else
        widget->refresh();
}

QRectF Canvas::place_of(t_object *box, int &unplaced) const {
    const QRectF rect = presented_ ? described_rect(box, "presentation_rect") : patching_rect(box);
    if (rect.width() >= 1 && rect.height() >= 1)
        return rect;
    ViewState state;
    const QSizeF size = data_view_state(box, state) ? unplaced_list : unplaced_box;
    const int lines = static_cast<int>(std::ceil((size.height() + 10) / unplaced_height));
    const QRectF place(QPointF(room, room + unplaced * unplaced_height), size);
    unplaced += lines;
    return place;
}

void Canvas::place_boxes() {
    QRectF all;
    int unplaced = 0;
    for (t_object *box : boxes_in(patcher_)) {
        BoxWidget *widget = widgets_.at(box);
        const bool shown = described_number(box, "hidden") == 0 && (!presented_ || is_presented_box(box));
        widget->setVisible(shown);
        if (!shown)
            continue;
        const QRectF place = place_of(box, unplaced);
        widget->place(place, zoom_, !presented_ && class_of_box(box) != gensym("comment"));
        all |= place;
    }
    extent_ = QSizeF((all.right() + room) * zoom_, (all.bottom() + room) * zoom_).toSize();
    setMinimumSize(extent_);
    updateGeometry();
    update();
}

// The tabulator goes as a person reads: from above, and from the left.
void Canvas::order_focus() {
    std::vector<BoxWidget *> order;
    for (const auto &[box, widget] : widgets_)
        if (widget->focusPolicy() != Qt::NoFocus || widget->focusProxy())
            order.push_back(widget);
    std::sort(order.begin(), order.end(), [](const BoxWidget *a, const BoxWidget *b) {
        return a->y() != b->y() ? a->y() < b->y() : a->x() < b->x();
    });
    const auto taker = [](BoxWidget *box) { return box->focusProxy() ? box->focusProxy() : box; };
    for (size_t i = 1; i < order.size(); ++i)
        setTabOrder(taker(order[i - 1]), taker(order[i]));
}

void Canvas::set_zoom(double zoom) {
    zoom_ = zoom;
    place_boxes();
}

void Canvas::set_presented(bool presented) {
    presented_ = presented;
    place_boxes();
}

// ---- painting

void Canvas::paintEvent(QPaintEvent *event) {
    const Look look = look_of(palette());
    QPainter painter(this);
    painter.fillRect(event->rect(), look.canvas);
    if (presented_)
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(look.cord, 1.4 * zoom_, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const ShownCord &cord : cords_in(patcher_)) {
        const BoxWidget *from = widget_of(cord.from), *to = widget_of(cord.to);
        if (from && to && !cord.hidden && from->isVisibleTo(this) && to->isVisibleTo(this))
            painter.drawPath(cord_path(cord, from->outlet_point(cord.outlet), to->inlet_point(cord.inlet), zoom_));
    }
}
