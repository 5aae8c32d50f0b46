// A document.
#include "document.h"

#include <QFileInfo>

#include "patcherwindow.h"

using namespace maxhost;

Document::~Document() {
    while (!windows_.isEmpty())
        delete windows_.takeLast();
    free_patcher(patcher_);
}

QString Document::name() const {
    return file().isEmpty() ? PatcherWindow::tr("Untitled") : QFileInfo(file()).fileName();
}

bool Document::save(const QString &file, QString &reason) {
    std::string why;
    const bool is_saved = save_as_named(QFileInfo(file).absoluteFilePath().toStdString(), why);
    reason = QString::fromStdString(why);
    return is_saved;
}

bool Document::save_as_named(const std::string &file, std::string &reason) {
    if (!save_patcher(patcher_, file, reason))
        return false;
    for (PatcherWindow *window : windows_)
        window->show_saved();
    return true;
}

bool Document::revert(QString &reason) {
    std::string why;
    t_object *again = open_patcher(file().toStdString(), why);
    if (!again) {
        reason = QString::fromStdString(why);
        return false;
    }
    while (windows_.size() > 1)
        delete windows_.takeLast();
    t_object *before = std::exchange(patcher_, again);
    windows_.constFirst()->show_patcher(again);
    free_patcher(before);
    take_folder();
    return true;
}

PatcherWindow *Document::window_of(t_object *patcher) const {
    for (PatcherWindow *window : windows_)
        if (window->patcher() == patcher)
            return window;
    return nullptr;
}

void Document::take_folder() const {
    set_patcher_folder(file().isEmpty() ? "" : QFileInfo(file()).absolutePath().toStdString());
}
