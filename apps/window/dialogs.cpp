// The dialogs that boxes open.
#include "dialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>

std::string Dialogs::ask_file(const std::string &prompt, const std::string &proposal) {
    const QString title = prompt.empty() ? tr("Save as") : QString::fromStdString(prompt);
    QFileDialog dialog(QApplication::activeWindow(), title);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.selectFile(QString::fromStdString(proposal));
    if (run(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst().toStdString();
}

void Dialogs::alert(const std::string &text) {
    QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(), QString::fromStdString(text),
                    QMessageBox::Ok, QApplication::activeWindow());
    run(box);
}

void Dialogs::dismiss() {
    dismissed_ = true;
    const QList<QDialog *> open = open_;
    for (QDialog *dialog : open)
        dialog->reject();
}

int Dialogs::run(QDialog &dialog) {
    if (dismissed_)
        return QDialog::Rejected;
    open_.append(&dialog);
    time_.stop();
    const int answer = dialog.exec();
    time_.go_on();
    open_.removeOne(&dialog);
    if (open_.isEmpty())
        Q_EMIT all_closed();
    return answer;
}
