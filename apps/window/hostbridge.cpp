// The bridge from the host to Qt.
#include "hostbridge.h"

#include <utility>

using namespace maxhost;

template <typename Change> void HostBridge::gather(Change change) {
    bool announce;
    {
        const std::lock_guard lock(mutex_);
        change(gathered_);
        announce = !std::exchange(gathered_.announced, true);
    }
    if (announce)
        QMetaObject::invokeMethod(this, &HostBridge::deliver, Qt::QueuedConnection);
}

FrontEnd HostBridge::front_end() {
    FrontEnd front;
    front.console = [this](ConsoleLine kind, const std::string &object, const std::string &text) {
        gather([&](Gathered &to) {
            to.lines.append({kind, QString::fromStdString(object), QString::fromStdString(text)});
        });
    };
    front.refused = [this](const std::string &object, const std::string &attribute, t_max_err) {
        const QString text = QString("\"%1\" does not take that").arg(QString::fromStdString(attribute));
        gather([&](Gathered &to) { to.lines.append({ConsoleLine::error, QString::fromStdString(object), text}); });
    };
    front.misuse = [this](const char *function, const std::string &reason) {
        const QString text = QString::fromUtf8(function) + ": " + QString::fromStdString(reason);
        gather([&](Gathered &to) { to.lines.append({ConsoleLine::error, "-", text}); });
    };
    front.repaint = [this](t_object *box) { gather([&](Gathered &to) { to.boxes.insert(box); }); };
    front.patcher_changed = [this](t_object *patcher) { gather([&](Gathered &to) { to.patchers.insert(patcher); }); };
    front.box_goes = [this](t_object *box) { Q_EMIT box_goes(box); };
    front.work = [this] { gather([](Gathered &to) { to.work = true; }); };
    return front;
}

void HostBridge::deliver() {
    Gathered told;
    {
        const std::lock_guard lock(mutex_);
        std::swap(told, gathered_);
    }
    if (!told.lines.isEmpty())
        Q_EMIT lines_told(told.lines);
    for (t_object *patcher : told.patchers)
        Q_EMIT patcher_changed(patcher);
    for (t_object *box : told.boxes)
        Q_EMIT box_changed(box);
    if (told.work)
        Q_EMIT work_came();
}
