// A question to the user.
#pragma once

#include <QMessageBox>

// Asks in front of a window and waits for the answer. The window may go meanwhile, and the question with it: then the
// answer is Cancel, and whoever asks must see to it that nothing of the window is used.
QMessageBox::StandardButton ask(QWidget *window, const QString &title, const QString &text,
                                QMessageBox::StandardButtons buttons, QMessageBox::StandardButton usual);
