// A question to the user.
#include "question.h"

#include <QPointer>

QMessageBox::StandardButton ask(QWidget *window, const QString &title, const QString &text,
                                QMessageBox::StandardButtons buttons, QMessageBox::StandardButton usual) {
    const QPointer<QMessageBox> question = new QMessageBox(QMessageBox::Question, title, text, buttons, window);
    question->setDefaultButton(usual);
    const int answer = question->exec();
    if (!question)
        return QMessageBox::Cancel;
    delete question;
    return static_cast<QMessageBox::StandardButton>(answer);
}
