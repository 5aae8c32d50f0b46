// A bar at the edge of a window: its file is another one on the disk.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>

// Asks without holding anything up: as long as nothing is pressed, everything stays as it is.
class ChangeBar : public QFrame {
    Q_OBJECT

  public:
    ChangeBar(); // hidden

    // What is known of the file: it was shown here and has changed since, or it was never what is shown.
    enum class Difference { changed, unlike };

    // Offers to read a file again; one that is gone can only be kept. With `edited` it says what would be lost.
    void offer(const QString &file, Difference difference, bool edited);

  Q_SIGNALS:
    void reload_wanted();

  private:
    QLabel *text_;
    QPushButton *reload_;
};

// Whether the user wants to save over a file that is not the one that was opened or saved. Asks again when the file
// changes while the question is open. The window may go meanwhile; then it is false.
bool may_save_over(QString file, QWidget *window);
