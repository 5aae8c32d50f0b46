// The host's time in Qt's event loop: its queue is drained, piece by piece when that takes long, and its clocks run as
// time passes.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class HostTime : public QObject {
    Q_OBJECT

  public:
    HostTime();

    // Runs what is queued and what is due, unless it is stopped. False when that takes too long and goes on by itself;
    // when it goes on without an end, the console says so.
    bool run();

    // Stops and goes on, counted: while a dialog that a box has opened waits for its answer, and while a script has
    // the time. The time in between is not made up for.
    void stop();
    void go_on();

  private:
    bool run_clocks(bool is_drained); // whether the queue is drained after that
    void arrange_next();

    QTimer timer_;
    QElapsedTimer since_;       // the clocks' time was set
    bool timer_is_idle_ = true; // nothing was due: time has not passed for anybody
    int stops_ = 0;
};
