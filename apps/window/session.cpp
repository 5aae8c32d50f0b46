// The session.
#include "session.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QSettings>

#include "patcherwindow.h"

using namespace maxhost;

namespace {

constexpr const char *recent_key = "recent files";
constexpr int most_recent = 10;

} // namespace

Session::Session() {
    connect(&bridge_, &HostBridge::lines_told, &console_, &ConsoleModel::append);
    connect(&bridge_, &HostBridge::work_came, &time_, &HostTime::run);
    connect(&dialogs_, &Dialogs::all_closed, this, &Session::release_closed, Qt::QueuedConnection);
}

Session::~Session() { close_all(); }

void Session::close_all() {
    editors_.close_all();
    release_closed();
    documents_.clear();
}

FrontEnd Session::front_end() {
    FrontEnd front = bridge_.front_end();
    front.alert = [this](const std::string &text) { dialogs_.alert(text); };
    front.save_dialog = [this](const std::string &prompt, const std::string &proposal) {
        return dialogs_.ask_file(prompt, proposal);
    };
    front.editor = [this](t_object *editor, EditorEvent event) { editors_.hear(editor, event); };
    return front;
}

// ---- opening

Document *Session::open(const QString &file, QString &reason) {
    const QString path = QDir::cleanPath(QFileInfo(file).absoluteFilePath());
    for (const std::unique_ptr<Document> &document : documents_)
        if (document->file() == path && QFileInfo::exists(path)) {
            document->windows().constFirst()->raise();
            document->windows().constFirst()->activateWindow();
            return document.get();
        }
    std::string why;
    t_object *patcher = open_patcher(file.toStdString(), why);
    if (!patcher) {
        reason = QString::fromStdString(why);
        return nullptr;
    }
    auto document = std::make_unique<Document>(patcher);
    add_recent(document->file());
    return show(std::move(document));
}

void Session::open_and_tell(const QString &file, QWidget *parent) {
    QString reason;
    if (!open(file, reason))
        QMessageBox::warning(parent, tr("Open"), tr("%1 cannot be opened: %2").arg(file, reason));
}

Document *Session::open_untitled() {
    auto document = std::make_unique<Document>(new_patcher());
    document->take_folder();
    return show(std::move(document));
}

Document *Session::show(std::unique_ptr<Document> document) {
    auto *window = new PatcherWindow(document->patcher(), *document, *this);
    document->add_window(window);
    documents_.push_back(std::move(document));
    bridge_.deliver(); // what was told while the boxes were made is no news to the window
    window->show();
    return documents_.back().get();
}

void Session::show_inner(Document &document, t_object *patcher) {
    PatcherWindow *window = document.window_of(patcher);
    if (!window) {
        window = new PatcherWindow(patcher, document, *this);
        document.add_window(window);
    }
    window->show();
    window->raise();
    window->activateWindow();
}

// ---- closing

std::unique_ptr<Document> Session::take(Document &document) {
    const auto found = std::find_if(documents_.begin(), documents_.end(),
                                    [&](const std::unique_ptr<Document> &each) { return each.get() == &document; });
    if (found == documents_.end())
        return nullptr;
    std::unique_ptr<Document> taken = std::move(*found);
    documents_.erase(found);
    return taken;
}

void Session::close(Document &document) {
    std::unique_ptr<Document> taken = take(document);
    if (!taken)
        return;
    for (PatcherWindow *window : taken->windows())
        window->hide();
    closed_.push_back(std::move(taken));
    dialogs_.dismiss();
    QMetaObject::invokeMethod(this, &Session::release_closed, Qt::QueuedConnection);
}

void Session::close_window(PatcherWindow *window) {
    window->document().remove_window(window);
    closed_windows_.append(window);
    QMetaObject::invokeMethod(this, &Session::release_closed, Qt::QueuedConnection);
}

void Session::close_now(Document &document) {
    take(document).reset();
    if (!documents_.empty())
        documents_.back()->take_folder();
}

void Session::release_closed() {
    if (dialogs_.are_open())
        return; // it is called again
    while (!closed_windows_.isEmpty())
        delete closed_windows_.takeLast();
    closed_.clear();
    dialogs_.open_again();
    if (!documents_.empty())
        documents_.back()->take_folder();
}

void Session::revert(Document &document, PatcherWindow *window) {
    QString reason;
    if (dialogs_.are_open())
        reason = tr("a box waits for the answer to a dialog");
    else if (document.revert(reason))
        return;
    window->complain(tr("%1 cannot be read again: %2").arg(document.name(), reason));
}

// ---- recent files

QStringList Session::recent_files() const { return QSettings().value(recent_key).toStringList(); }

void Session::add_recent(const QString &file) {
    QStringList files = recent_files();
    files.removeAll(file);
    files.prepend(file);
    QSettings().setValue(recent_key, files.mid(0, most_recent));
}
