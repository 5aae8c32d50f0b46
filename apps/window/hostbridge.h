// The bridge from the host to Qt: what the host tells on any thread comes out as signals on the thread of the windows.
#pragma once

#include <mutex>
#include <unordered_set>

#include <QList>
#include <QObject>
#include <QString>

#include "embed/host.h"

struct ConsoleEntry {
    maxhost::ConsoleLine kind;
    QString object;
    QString text;
};

// Gathers what is told until the event that is under way is over, so that many calls for one box are one signal.
class HostBridge : public QObject {
    Q_OBJECT

  public:
    // The front end's part that goes over the bridge; dialogs and editors are not in it. The bridge outlives the host.
    maxhost::FrontEnd front_end();

    // Sends out what has been gathered, now.
    void deliver();

  Q_SIGNALS:
    void lines_told(const QList<ConsoleEntry> &lines);
    void box_changed(t_object *box);         // it may have gone since: to be compared, not touched
    void patcher_changed(t_object *patcher); // likewise
    void work_came();

    // At once: the box is going.
    void box_goes(t_object *box);

  private:
    struct Gathered {
        QList<ConsoleEntry> lines;
        std::unordered_set<t_object *> boxes, patchers;
        bool work = false;
        bool announced = false; // deliver is on its way
    };

    // Any thread.
    template <typename Change> void gather(Change change);

    std::mutex mutex_;
    Gathered gathered_;
};
