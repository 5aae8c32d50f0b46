// The dialogs that boxes open: the save dialog and the alert, Qt's.
#pragma once

#include <functional>

#include <QDialog>
#include <QObject>

#include "hosttime.h"

// While one is open, the box that has opened it waits for the answer: its patcher must stay, and the host's time stands
// still.
class Dialogs : public QObject {
    Q_OBJECT

  public:
    explicit Dialogs(HostTime &time) : time_(time) {}

    // The front end's part. A cancelled dialog answers an empty text.
    std::string ask_file(const std::string &prompt, const std::string &proposal);
    void alert(const std::string &text);

    bool are_open() const { return !open_.isEmpty(); }

    // Cancels those that are open; they are gone when control is back in the event loop that they interrupted. Until
    // open_again every new one is cancelled as well.
    void dismiss();
    void open_again() { dismissed_ = false; }

  Q_SIGNALS:
    // The last one has closed; the box that has opened it still runs.
    void all_closed();

  private:
    int run(QDialog &dialog);

    HostTime &time_;
    QList<QDialog *> open_;
    bool dismissed_ = false;
};
