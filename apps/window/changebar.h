// A bar at the edge of a window: its file has changed on the disk.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>

// Asks without holding anything up: as long as nothing is pressed, everything stays as it is.
class ChangeBar : public QFrame {
    Q_OBJECT

  public:
    ChangeBar(); // hidden

    // Offers to read a file again; one that is gone can only be kept. With `edited` it says what would be lost.
    void offer(const QString &file, bool edited);

  Q_SIGNALS:
    void reload_wanted();

  private:
    QLabel *text_;
    QPushButton *reload_;
};

// Whether the user wants to save over a file that has changed on the disk.
bool may_save_over(const QString &file, QWidget *window);
