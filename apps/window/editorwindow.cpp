// The window of a text editor.
#include "editorwindow.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QVBoxLayout>

#include "look.h"
#include "session.h"

using namespace maxhost;

EditorWindow::EditorWindow(t_object *editor, Session &session)
    : editor_(editor), session_(session), text_(new CodeEdit), find_bar_(new FindBar(*text_)),
      highlighter_(new XmlHighlighter(text_->document())) {
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(text_, 1);
    layout->addWidget(find_bar_);
    setCentralWidget(content);
    text_->setAccessibleName(tr("text"));
    highlighter_->set_dark(is_dark(palette()));
    make_menus();
    statusBar();
    connect(text_->document(), &QTextDocument::modificationChanged, this, &QWidget::setWindowModified);
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

// The owner may find something wrong with the text only when it has taken it: then the console says so.
bool EditorWindow::save() {
    session_.bridge().deliver();
    const int errors = session_.console().errors();
    const bool is_taken = save_editor_text(editor_, text_->toPlainText().toStdString());
    drain_queue();
    session_.bridge().deliver();
    const bool is_saved = is_taken && session_.console().errors() == errors;
    const QString reason =
        session_.console().errors() > errors ? session_.console().last_error() : tr("nobody takes the text");
    statusBar()->setStyleSheet(is_saved ? QString() : "color: " + look_of(palette()).error.name());
    statusBar()->showMessage(is_saved ? tr("Saved") : tr("Not saved: %1").arg(reason), is_saved ? 3000 : 0);
    if (is_saved)
        text_->document()->setModified(false);
    return is_saved;
}

bool EditorWindow::may_close() {
    if (!text_->document()->isModified())
        return true;
    const QString name = windowTitle().remove("[*]");
    const auto answer =
        QMessageBox::question(this, name, tr("The text of %1 has changed. Save it before it is closed?").arg(name),
                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
}

void EditorWindow::closeEvent(QCloseEvent *event) {
    if (!editor_)
        return;
    if (!may_close())
        return event->ignore();
    if (editor_) // the owner may have gone while the question was open
        close_editor_window(editor_);
}

void EditorWindow::changeEvent(QEvent *event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        highlighter_->set_dark(is_dark(palette()));
}
