// A test with windows.
#include "window-test.h"

#include <QDir>
#include <QElapsedTimer>
#include <QPushButton>

#include "ext_proto.h"
#include "ext_sysfile.h"

using namespace maxhost;

namespace {

std::mutex outputs_mutex;

} // namespace

void WindowTest::init() {
    folder_ = std::make_unique<QTemporaryDir>();
    folder_before_ = QDir::currentPath();
    QDir::setCurrent(folder_->path());
    session_ = std::make_unique<Session>();
    FrontEnd front = session_->front_end();
    front.output = [this](const std::string &object, long outlet, t_symbol *selector, std::span<const t_atom> atoms) {
        QString line = QString("%1:%2").arg(QString::fromStdString(object)).arg(outlet);
        if (selector != gensym("int"))
            line += " " + text_of(selector);
        for (const t_atom &atom : atoms)
            line += " " + QString::fromStdString(print_atom(atom));
        const std::lock_guard lock(outputs_mutex); // they come on both threads
        outputs_.append(line);
    };
    start_host(front);
}

void WindowTest::cleanup() {
    session_->close_all();
    stop_host();
    session_.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QDir::setCurrent(folder_before_);
    folder_.reset();
    outputs_.clear();
    QCOMPARE(memory_in_use().blocks, 0u);
    QCOMPARE(memory_in_use().objects, 0u);
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
}

QString WindowTest::write_patcher(const QString &boxes, const QString &lines, const QString &keys) {
    QFile file(path_of("test.maxpat"));
    if (!file.open(QFile::WriteOnly))
        qFatal("the patcher cannot be written");
    file.write(QString("{\"patcher\": {\"fileversion\": 1, \"rect\": [0, 0, 600, 500], %3 \"boxes\": [%1], "
                       "\"lines\": [%2]}}")
                   .arg(boxes, lines, keys)
                   .toUtf8());
    return file.fileName();
}

PatcherWindow *WindowTest::open(const QString &file) {
    QString reason;
    Document *document = session_->open(file, reason);
    if (!document)
        qFatal("%s", qPrintable(reason));
    settle();
    return document->windows().constFirst();
}

PatcherWindow *WindowTest::open_boxes(const QString &boxes, const QString &lines, const QString &keys) {
    return open(write_patcher(boxes, lines, keys));
}

t_object *WindowTest::box(const char *name) const {
    t_object *found = box_named(session_->documents().front()->patcher(), gensym(name));
    if (!found)
        qFatal("no box is named %s", name);
    return found;
}

BoxWidget *WindowTest::widget(const char *name) const {
    for (const PatcherWindow *window : session_->documents().front()->windows())
        for (const Canvas *canvas : window->canvases())
            if (BoxWidget *found = canvas->widget_of(box(name)))
                return found;
    return nullptr;
}

ListView *WindowTest::list(const char *name) const { return widget(name)->findChild<ListView *>(); }

void WindowTest::queue(const char *name, const QString &message) {
    for (const TypedMessage &typed : parse_messages(message.toStdString()))
        send_message(box(name), typed.atoms);
}

void WindowTest::send(const char *name, const QString &message) {
    queue(name, message);
    settle();
}

void WindowTest::settle() {
    session_->bridge().deliver();
    while (!session_->time().run()) {
    }
    session_->bridge().deliver();
    QCoreApplication::sendPostedEvents();
}

ViewState WindowTest::view(const char *name) const {
    ViewState state{};
    data_view_state(box(name), state);
    return state;
}

void WindowTest::when_asked(std::function<void(QDialog &)> answer) {
    auto *timer = new QTimer(session_.get());
    connect(timer, &QTimer::timeout, timer, [timer, answer = std::move(answer)] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        timer->stop();
        timer->deleteLater();
        answer(*dialog);
    });
    timer->start(0);
}

void WindowTest::press(QDialog &dialog, QMessageBox::StandardButton button) {
    QTest::mouseClick(static_cast<QMessageBox &>(dialog).button(button), Qt::LeftButton);
}

QPushButton *WindowTest::button_of(const QWidget &bar, const QString &text) const {
    for (QPushButton *each : bar.findChildren<QPushButton *>())
        if (each->text() == text)
            return each;
    qFatal("no button says %s", qPrintable(text));
}

QString box_json(const QString &id, const QString &maxclass, const QString &rect, const QString &more) {
    return QString("{\"box\": {\"id\": \"%1\", \"varname\": \"%1\", \"maxclass\": \"%2\", \"patching_rect\": [%3]%4}}")
        .arg(id, maxclass, rect, more.isEmpty() ? QString() : ", " + more);
}

QString cord_json(const QString &from, int outlet, const QString &to, int inlet) {
    return QString("{\"patchline\": {\"source\": [\"%1\", %2], \"destination\": [\"%3\", %4]}}")
        .arg(from)
        .arg(outlet)
        .arg(to)
        .arg(inlet);
}

void queue_slow_tasks(int tasks, long &done) {
    const auto work = +[](long *count) {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 20) {
        }
        ++*count;
    };
    for (int i = 0; i < tasks; ++i)
        defer_low(&done, reinterpret_cast<method>(work), nullptr, 0, nullptr);
}

QString read_text(const QString &file) {
    QFile opened(file);
    return opened.open(QFile::ReadOnly) ? QString::fromUtf8(opened.readAll()) : QString();
}
