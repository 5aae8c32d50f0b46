// The window of a patcher.
#include "patcherwindow.h"

#include <algorithm>

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabBar>
#include <QVBoxLayout>

#include "document.h"
#include "session.h"

using namespace maxhost;

namespace {

constexpr double zoom_step = 1.25;
constexpr double least_zoom = 0.25, most_zoom = 5;
constexpr QSize usual_size(640, 480);

const char *const file_kinds = QT_TR_NOOP("Patchers (*.maxpat *.maxhelp *.pat *.help);;All files (*)");

// The title of a patcher in a box: what was typed behind the name of the class.
QString inner_title(t_object *box) {
    const QString text = described_text(box, "text", text_of(class_of_box(box)));
    return text.contains(' ') ? text.section(' ', 1) : text;
}

// The boxes whose patchers are to be shown on tabs.
std::vector<t_object *> boxes_on_tabs(t_object *patcher) {
    std::vector<t_object *> boxes;
    for (t_object *box : boxes_in(patcher))
        if (t_object *inner = patcher_in(box); inner && described_number(inner, "showontab") != 0)
            boxes.push_back(box);
    return boxes;
}

} // namespace

PatcherWindow::PatcherWindow(t_object *patcher, Document &document, Session &session)
    : patcher_(patcher), document_(document), session_(session), tabs_(new QTabWidget), change_bar_(new ChangeBar),
      watch_(new FileWatch([&document] { return changed_on_disk(document.patcher()); }, this)),
      console_(new ConsoleDock(session.console(), this)), errors_(new QToolButton), zoom_shown_(new QLabel) {
    setAcceptDrops(true);
    tabs_->setDocumentMode(true);
    tabs_->setTabBarAutoHide(true);
    tabs_->tabBar()->setDrawBase(false);
    tabs_->setStyleSheet(tab_style(look_of(palette())));
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(change_bar_);
    layout->addWidget(tabs_, 1);
    setCentralWidget(content);
    addDockWidget(Qt::BottomDockWidgetArea, console_);
    console_->hide();
    make_menus();
    make_status_bar();
    connect(&session.bridge(), &HostBridge::patcher_changed, this, [this] { show_title(); });
    connect(watch_, &FileWatch::changed, this,
            [this] { change_bar_->offer(document_.file(), ChangeBar::Difference::changed, document_.is_changed()); });
    connect(watch_, &FileWatch::unchanged, change_bar_, &QWidget::hide);
    connect(change_bar_, &ChangeBar::reload_wanted, this, &PatcherWindow::revert);
    show_patcher(patcher);
    fit_to_patcher();
    current_canvas()->setFocus();
}

bool PatcherWindow::is_whole() const { return patcher_ == document_.patcher(); }

// ---- pages

void PatcherWindow::show_patcher(t_object *patcher) {
    patcher_ = patcher;
    while (tabs_->count() > 0)
        delete tabs_->widget(0);
    const std::vector<t_object *> on_tabs = boxes_on_tabs(patcher);
    if (on_tabs.empty() || described_number(patcher, "showrootpatcherontab", 1) != 0)
        add_page(patcher, document_.name());
    for (t_object *box : on_tabs)
        add_page(patcher_in(box), inner_title(box));
    presentation_->setChecked(current_canvas()->is_presented());
    set_zoom(zoom_);
    show_title();
    follow_file();
}

void PatcherWindow::add_page(t_object *patcher, const QString &title) {
    auto *canvas = new Canvas(patcher, session_.bridge());
    connect(canvas, &Canvas::assisted, this, [this](const QString &text) { statusBar()->showMessage(text); });
    connect(canvas, &Canvas::opened, this, &PatcherWindow::open_inner);
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(canvas);
    tabs_->addTab(area, QString(title).replace('&', "&&"));
}

QList<Canvas *> PatcherWindow::canvases() const {
    QList<Canvas *> all;
    for (int i = 0; i < tabs_->count(); ++i)
        all.append(static_cast<Canvas *>(static_cast<QScrollArea *>(tabs_->widget(i))->widget()));
    return all;
}

Canvas *PatcherWindow::current_canvas() const { return canvases().at(tabs_->currentIndex()); }

bool PatcherWindow::show_tab(const QString &title) {
    for (int i = 0; i < tabs_->count(); ++i)
        if (tabs_->tabText(i) == title) {
            tabs_->setCurrentIndex(i);
            return true;
        }
    return false;
}

// The size that the file asks for, but not larger than the screen.
void PatcherWindow::fit_to_patcher() {
    const QRectF wanted = described_rect(current_canvas()->patcher(), "rect");
    QSize size = wanted.isEmpty() ? usual_size : wanted.size().toSize();
    size.rheight() += menuBar()->sizeHint().height() + statusBar()->sizeHint().height();
    if (tabs_->count() > 1)
        size.rheight() += tabs_->tabBar()->sizeHint().height();
    resize(size.boundedTo(screen()->availableSize()).expandedTo({240, 160}));
}

void PatcherWindow::show_title() {
    const QString name = is_whole() ? document_.name() : inner_title(box_around(patcher_)) + " in " + document_.name();
    setWindowTitle(name + "[*]");
    setWindowModified(document_.is_changed());
}

// The file is the one that was opened or saved just now. Windows of patchers in boxes leave it to that of the document.
void PatcherWindow::follow_file() {
    change_bar_->hide();
    if (is_whole())
        watch_->follow(document_.file());
}

void PatcherWindow::show_saved() {
    show_title();
    follow_file();
}

void PatcherWindow::open_inner(t_object *patcher) { session_.show_inner(document_, patcher); }

// ---- menus

void PatcherWindow::make_menus() {
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&New"), QKeySequence::New, &session_, [this] { session_.open_untitled(); });
    file->addAction(tr("&Open…"), QKeySequence::Open, this, &PatcherWindow::open_file);
    QMenu *recent = file->addMenu(tr("Open &Recent"));
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { fill_recent(recent); });
    file->addSeparator();
    file->addAction(tr("&Save"), QKeySequence::Save, this, &PatcherWindow::save);
    file->addAction(tr("Save &As…"), QKeySequence("Ctrl+Shift+S"), this, &PatcherWindow::save_as);
    file->addAction(tr("Re&vert"), this, &PatcherWindow::revert);
    file->addSeparator();
    file->addAction(tr("&Close"), QKeySequence::Close, this, &QWidget::close);
    file->addAction(tr("&Quit"), QKeySequence::Quit, qApp, &QApplication::closeAllWindows);
    QMenu *view = menuBar()->addMenu(tr("&View"));
    presentation_ = view->addAction(tr("&Presentation"), QKeySequence("Ctrl+Alt+E"), this, [this](bool on) {
        for (Canvas *canvas : canvases())
            canvas->set_presented(on);
    });
    presentation_->setCheckable(true);
    view->addSeparator();
    view->addAction(tr("Zoom &In"), QKeySequence::ZoomIn, this, [this] { set_zoom(zoom_ * zoom_step); });
    view->addAction(tr("Zoom &Out"), QKeySequence::ZoomOut, this, [this] { set_zoom(zoom_ / zoom_step); });
    view->addAction(tr("&Actual Size"), QKeySequence("Ctrl+0"), this, [this] { set_zoom(1); });
    view->addSeparator();
    QAction *console = console_->toggleViewAction();
    console->setText(tr("&Console"));
    console->setShortcut(QKeySequence("Ctrl+Shift+M"));
    view->addAction(console);
}

void PatcherWindow::fill_recent(QMenu *menu) {
    menu->clear();
    for (const QString &file : session_.recent_files())
        menu->addAction(QString(file).replace('&', "&&"), this, [this, file] { session_.open_and_tell(file, this); });
    if (menu->isEmpty())
        menu->addAction(tr("None"))->setEnabled(false);
}

void PatcherWindow::make_status_bar() {
    errors_->setAutoRaise(true);
    errors_->setToolTip(tr("Show the console"));
    connect(errors_, &QToolButton::clicked, console_->toggleViewAction(), &QAction::trigger);
    const auto show_count = [this](int errors) {
        errors_->setText(error_count(errors));
        errors_->setStyleSheet(errors > 0 ? "color: " + look_of(palette()).error.name() : QString());
    };
    connect(&session_.console(), &ConsoleModel::counted, this, show_count);
    show_count(session_.console().errors());
    statusBar()->addPermanentWidget(zoom_shown_);
    statusBar()->addPermanentWidget(errors_);
}

void PatcherWindow::set_zoom(double zoom) {
    zoom_ = std::clamp(zoom, least_zoom, most_zoom);
    for (Canvas *canvas : canvases())
        canvas->set_zoom(zoom_);
    zoom_shown_->setText(QString("%1%").arg(qRound(zoom_ * 100)));
}

void PatcherWindow::wheelEvent(QWheelEvent *event) {
    if (!event->modifiers().testFlag(Qt::ControlModifier) || event->angleDelta().y() == 0)
        return QMainWindow::wheelEvent(event);
    set_zoom(event->angleDelta().y() > 0 ? zoom_ * zoom_step : zoom_ / zoom_step);
}

// ---- files

void PatcherWindow::open_file() {
    const QString file =
        QFileDialog::getOpenFileName(this, tr("Open"), QFileInfo(document_.file()).path(), tr(file_kinds));
    if (!file.isEmpty())
        session_.open_and_tell(file, this);
}

// What is on its way to a box is saved with it.
bool PatcherWindow::write_to(const QString &file, QString &reason) {
    finish_queued();
    return document_.save(file, reason);
}

bool PatcherWindow::save() {
    if (document_.file().isEmpty())
        return save_as();
    if (document_.would_overwrite() && !may_save_over(document_.file(), this))
        return false;
    QString reason;
    if (write_to(document_.file(), reason)) {
        statusBar()->showMessage(tr("Saved"), 3000);
        return true;
    }
    complain(tr("%1 is not saved: %2").arg(document_.name(), reason));
    return false;
}

bool PatcherWindow::save_as() {
    const QString proposal = document_.file().isEmpty() ? QString("untitled.maxpat") : document_.file();
    const QString file = QFileDialog::getSaveFileName(this, tr("Save As"), proposal, tr(file_kinds));
    if (file.isEmpty())
        return false;
    QString reason;
    if (!write_to(file, reason)) {
        complain(tr("%1 is not saved: %2").arg(QFileInfo(file).fileName(), reason));
        return false;
    }
    session_.add_recent(document_.file());
    return true;
}

void PatcherWindow::revert() {
    if (document_.file().isEmpty())
        return;
    finish_queued();
    const QString question = tr("Go back to the file? What has changed since it was saved is lost.");
    if (document_.is_changed() &&
        QMessageBox::question(this, tr("Revert"), question, QMessageBox::Discard | QMessageBox::Cancel,
                              QMessageBox::Cancel) != QMessageBox::Discard)
        return;
    session_.revert(document_, this); // this window may close before it returns
}

void PatcherWindow::complain(const QString &text) { QMessageBox::warning(this, document_.name(), text); }

// What is on its way to a box comes before its patcher is saved or asked about. While a box waits for the answer to a
// dialog, so does what is queued behind it.
void PatcherWindow::finish_queued() {
    if (!session_.dialogs().are_open())
        drain_queue();
}

// Whether the document may be closed; a person is asked when it has changed.
bool PatcherWindow::may_close() {
    finish_queued();
    if (!document_.is_changed())
        return true;
    const auto answer = QMessageBox::question(
        this, document_.name(), tr("%1 has changed. Save it before it is closed?").arg(document_.name()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
}

// ---- events

void PatcherWindow::closeEvent(QCloseEvent *event) {
    if (!is_whole()) {
        session_.close_window(this);
    } else if (may_close()) {
        session_.close(document_);
    } else {
        event->ignore();
    }
}

void PatcherWindow::changeEvent(QEvent *event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        document_.take_folder();
        watch_->look();
    }
    if (event->type() == QEvent::PaletteChange)
        tabs_->setStyleSheet(tab_style(look_of(palette())));
}

void PatcherWindow::dragEnterEvent(QDragEnterEvent *event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (std::any_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); }))
        event->acceptProposedAction();
}

void PatcherWindow::dropEvent(QDropEvent *event) {
    for (const QUrl &url : event->mimeData()->urls())
        if (url.isLocalFile())
            session_.open_and_tell(url.toLocalFile(), this);
    event->acceptProposedAction();
}
