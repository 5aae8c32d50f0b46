// The window of a text editor.
#include "editorwindow.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QPointer>
#include <QStatusBar>
#include <QVBoxLayout>

#include "look.h"
#include "question.h"
#include "session.h"
#include "textfault.h"
#include "xmldocument.h"

using namespace maxhost;

namespace {

// The text as it was read or typed: toPlainText() would make blanks of no-break spaces.
QString exact_text(const QPlainTextEdit &edit) {
    return edit.document()->toRawText().replace(QChar::ParagraphSeparator, '\n');
}

} // namespace

EditorWindow::EditorWindow(t_object *editor, Session &session)
    : editor_(editor), session_(session), change_bar_(new ChangeBar),
      watch_(new FileWatch([this] { return stamp_of(file_.toStdString()) != as_held_; }, this)), text_(new CodeEdit),
      find_bar_(new FindBar(*text_)), highlighter_(new XmlHighlighter(text_->document())) {
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(change_bar_);
    layout->addWidget(text_, 1);
    layout->addWidget(find_bar_);
    setCentralWidget(content);
    text_->setAccessibleName(tr("text"));
    highlighter_->set_dark(is_dark(palette()));
    make_menus();
    statusBar();
    connect(text_->document(), &QTextDocument::modificationChanged, this, &QWidget::setWindowModified);
    connect(watch_, &FileWatch::changed, this, &EditorWindow::offer_reload);
    connect(watch_, &FileWatch::unchanged, change_bar_, &QWidget::hide);
    connect(change_bar_, &ChangeBar::reload_wanted, this, &EditorWindow::reload);
    resize(720, 560);
    QMetaObject::invokeMethod(this, &QWidget::show, Qt::QueuedConnection);
}

void EditorWindow::make_menus() {
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Save"), QKeySequence::Save, this, &EditorWindow::save);
    file->addAction(tr("&Close"), QKeySequence::Close, this, &QWidget::close);
    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    edit->addAction(tr("&Undo"), QKeySequence::Undo, text_, &QPlainTextEdit::undo);
    edit->addAction(tr("&Redo"), QKeySequence::Redo, text_, &QPlainTextEdit::redo);
    edit->addSeparator();
    edit->addAction(tr("Cu&t"), QKeySequence::Cut, text_, &QPlainTextEdit::cut);
    edit->addAction(tr("&Copy"), QKeySequence::Copy, text_, &QPlainTextEdit::copy);
    edit->addAction(tr("&Paste"), QKeySequence::Paste, text_, &QPlainTextEdit::paste);
    edit->addAction(tr("Select &All"), QKeySequence::SelectAll, text_, &QPlainTextEdit::selectAll);
    edit->addSeparator();
    edit->addAction(tr("&Find…"), QKeySequence::Find, find_bar_, &FindBar::open);
    edit->addAction(tr("Find &Next"), QKeySequence::FindNext, find_bar_, &FindBar::find_next);
    edit->addAction(tr("Find Pre&vious"), QKeySequence::FindPrevious, find_bar_, &FindBar::find_previous);
}

void EditorWindow::refresh(EditorEvent event) {
    const EditorState state = editor_state(editor_);
    const QString title = QString::fromStdString(state.title.empty() ? state.file : state.title);
    setWindowTitle((title.isEmpty() ? tr("Untitled") : title) + "[*]");
    if (event == EditorEvent::text) {
        text_->setPlainText(QString::fromStdString(state.text));
        text_->document()->setModified(false);
        file_ = QString::fromStdString(state.path);
        compare_with_file();
    } else if (event == EditorEvent::file) {
        take_path(QString::fromStdString(state.path));
    } else if (event == EditorEvent::visible) {
        setVisible(state.visible);
        raise();
        activateWindow();
    }
}

void EditorWindow::editor_is_gone() {
    editor_ = nullptr;
    hide();
    deleteLater();
}

// The owner names its file again and again, and its text stays the same.
void EditorWindow::take_path(const QString &path) {
    if (path == file_)
        return;
    file_ = path;
    compare_with_file();
}

// An editor shows what its owner has in memory, and the file need not be the one that was read.
void EditorWindow::compare_with_file() {
    const FileStamp as_read = stamp_of(file_.toStdString());
    QString text, reason;
    const bool is_same = read_xml_text(file_, text, reason) && text == exact_text(*text_);
    hold(is_same ? as_read : FileStamp());
    watch_->look();
}

void EditorWindow::hold(const FileStamp &stamp) {
    as_held_ = stamp;
    change_bar_->hide();
    watch_->follow(file_);
}

void EditorWindow::offer_reload() {
    const auto difference = as_held_.exists ? ChangeBar::Difference::changed : ChangeBar::Difference::unlike;
    change_bar_->offer(file_, difference, text_->document()->isModified());
}

void EditorWindow::reload() {
    const FileStamp as_read = stamp_of(file_.toStdString());
    QString text, reason;
    if (!read_xml_text(file_, text, reason)) {
        ask(this, name(), tr("%1 cannot be read again: %2").arg(name(), reason), QMessageBox::Ok, QMessageBox::Ok);
        return;
    }
    text_->setPlainText(text);
    text_->document()->setModified(false);
    hold(as_read);
}

// The owner may find something wrong with the text only when it has taken it: then the console says so. What is queued
// may open a dialog, and by its end the window may be gone.
bool EditorWindow::hand_over(QString &reason) {
    const QPointer<EditorWindow> window = this;
    Session &session = session_;
    session.bridge().deliver();
    const int errors = session.console().errors();
    forget_text_fault();
    const bool is_taken = save_editor_text(editor_, exact_text(*text_).toStdString());
    const TextFault fault = last_text_fault();
    drain_queue();
    session.bridge().deliver();
    if (!is_taken && fault.line > 0) {
        reason = tr("line %1, column %2: %3").arg(fault.line).arg(fault.column).arg(fault.reason);
        if (window)
            text_->go_to(fault.line, fault.column);
        return false;
    }
    const bool is_faulty = session.console().errors() > errors;
    reason = is_faulty ? session.console().last_error() : tr("the text is refused");
    return is_taken && !is_faulty;
}

bool EditorWindow::save() {
    const QPointer<EditorWindow> window = this;
    const FileStamp now = stamp_of(file_.toStdString());
    if (now.exists && now != as_held_ && !may_save_over(file_, this))
        return false;
    if (!window || !editor_) // the owner has gone while the question was open
        return false;
    const QString before = file_;
    QString reason;
    const bool is_saved = hand_over(reason);
    if (!window || !editor_)
        return is_saved;
    statusBar()->setStyleSheet(is_saved ? QString() : "color: " + look_of(palette()).error.name());
    statusBar()->showMessage(is_saved ? tr("Saved") : tr("Not saved: %1").arg(reason), is_saved ? 3000 : 0);
    if (!is_saved)
        return false;
    text_->document()->setModified(false);
    if (before.isEmpty() || file_ == before) // else its owner has turned to another file meanwhile
        hold(stamp_of(file_.toStdString()));
    return true;
}

bool EditorWindow::may_close() {
    if (!text_->document()->isModified())
        return true;
    const auto answer = ask(this, name(), tr("The text of %1 has changed. Save it before it is closed?").arg(name()),
                            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
}

void EditorWindow::closeEvent(QCloseEvent *event) {
    if (!editor_)
        return;
    const QPointer<EditorWindow> window = this;
    if (!may_close())
        return event->ignore();
    if (window && editor_) // the owner may have gone while the question was open
        close_editor_window(editor_);
}

void EditorWindow::changeEvent(QEvent *event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        watch_->look();
    if (event->type() == QEvent::PaletteChange)
        highlighter_->set_dark(is_dark(palette()));
}
