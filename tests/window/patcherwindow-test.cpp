// The patcher window: tabs, inner patchers, presentation, files, the console.
#include "window-test.h"

#include <cstdio>
#include <memory>

#include <unistd.h>

#include <QAction>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QTabWidget>

#include "picture.h"
#include "scriptplayer.h"

using namespace maxhost;

namespace {

const QString message_box = box_json("m", "message", "20, 20, 80, 22", "\"text\": \"go\"");
const QString embedding_list = box_json("list", "vrk.tessaroll", "20, 60, 100, 80", "\"embed\": 1");

QString inner_json(const QString &id, const QString &text, const QString &keys, const QString &boxes) {
    return box_json(id, "newobj", "20, 150, 80, 22",
                    QString("\"text\": \"%1\", \"patcher\": {\"fileversion\": 1, %2 \"boxes\": [%3], \"lines\": []}")
                        .arg(text, keys, boxes));
}

// Queues itself for ever.
struct Endless {
    void *element = qelem_new(this, reinterpret_cast<method>(run));
    long runs = 0;

    Endless() { qelem_set(element); }
    ~Endless() { qelem_free(element); }
    static void run(Endless *work) {
        ++work->runs;
        qelem_set(work->element);
    }
};

} // namespace

class PatcherWindowTest : public WindowTest {
    Q_OBJECT

  private Q_SLOTS:
    void title_tells_name_and_change();
    void closing_asks_when_changed_data();
    void closing_asks_when_changed();
    void saving_writes_the_file();
    void saving_writes_what_is_on_its_way();
    void work_without_end_leaves_time_for_a_person();
    void work_without_end_is_told_once();
    void long_work_is_done_piece_by_piece();
    void work_of_clocks_is_done_piece_by_piece();
    void saving_as_takes_the_new_name();
    void reverting_reads_the_file_again();
    void saving_over_a_changed_file_asks_data();
    void saving_over_a_changed_file_asks();
    void a_file_that_is_gone_is_saved_without_a_question();
    void changes_on_the_disk_are_noticed_again_and_again();
    void a_change_is_noticed_when_the_window_becomes_active();
    void reloading_loses_edits_only_when_that_is_wanted();
    void own_saving_is_not_a_change();
    void save_that_fails_is_told_with_its_reason();
    void reverting_comes_after_what_is_queued();
    void file_that_is_not_there_is_told();
    void files_are_dropped_in();
    void recent_files_are_kept();
    void inner_patcher_opens_on_double_click();
    void tabs_show_inner_patchers();
    void presentation_shows_its_boxes();
    void console_counts_errors();
    void dark_palette_keeps_texts_readable();
    void picture_is_what_the_window_shows();
    void script_is_played_as_it_is_written();

  private:
    QAction *action(PatcherWindow *window, const QString &text) const;

    // What another program does: it replaces the patcher's file.
    void replace_file(const QString &label);
};

void PatcherWindowTest::replace_file(const QString &label) {
    QFile file(path_of("beside"));
    QVERIFY(file.open(QFile::WriteOnly));
    file.write("{\"patcher\": {\"boxes\": [" +
               box_json("m", "message", "20, 20, 80, 22", QString("\"text\": \"%1\"").arg(label)).toUtf8() + "]}}");
    file.close();
    QCOMPARE(std::rename(qPrintable(file.fileName()), qPrintable(path_of("test.maxpat"))), 0);
}

QAction *PatcherWindowTest::action(PatcherWindow *window, const QString &text) const {
    for (QAction *each : window->findChildren<QAction *>())
        if (each->text().remove('&') == text)
            return each;
    return nullptr;
}

void PatcherWindowTest::title_tells_name_and_change() {
    PatcherWindow *window = open_boxes(embedding_list);
    QCOMPARE(window->windowTitle(), "test.maxpat[*]");
    QVERIFY(!window->isWindowModified());
    send("list", "append one");
    QVERIFY(window->isWindowModified());
    action(window, "Save")->trigger();
    settle();
    QVERIFY(!window->isWindowModified());
}

void PatcherWindowTest::closing_asks_when_changed_data() {
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("is_closed");
    QTest::addColumn<bool>("is_saved");
    QTest::newRow("cancel") << int(QMessageBox::Cancel) << false << false;
    QTest::newRow("discard") << int(QMessageBox::Discard) << true << false;
    QTest::newRow("save") << int(QMessageBox::Save) << true << true;
}

void PatcherWindowTest::closing_asks_when_changed() {
    QFETCH(int, answer);
    PatcherWindow *window = open_boxes(embedding_list);
    send("list", "append \"kept item\"");
    bool was_asked = false;
    when_asked([&](QDialog &dialog) {
        was_asked = true;
        press(dialog, static_cast<QMessageBox::StandardButton>(answer));
    });
    window->close();
    QVERIFY(was_asked);
    QTEST(session().documents().empty(), "is_closed");
    QTEST(read_text(path_of("test.maxpat")).contains("kept item"), "is_saved");
}

void PatcherWindowTest::saving_writes_what_is_on_its_way() {
    PatcherWindow *window = open_boxes(embedding_list);
    queue("list", "append \"an item\", append another");
    action(window, "Save")->trigger();
    QVERIFY(read_text(path_of("test.maxpat")).contains("another"));
}

void PatcherWindowTest::work_without_end_leaves_time_for_a_person() {
    open_boxes(embedding_list);
    Endless work;
    QVERIFY(!session().time().run());
    const long before = work.runs;
    QTRY_VERIFY(work.runs > before); // events come in between, as this one does
}

void PatcherWindowTest::work_without_end_is_told_once() {
    open_boxes(embedding_list);
    Endless work;
    while (work.runs < 10'000'000)
        session().time().run();
    session().time().run();
    session().bridge().deliver();
    QCOMPARE(session().console().errors(), 1);
    QCOMPARE(session().console().last_error(), "the queue does not become empty: something queues itself for ever");
}

// Nothing tells the window of work any more once it has begun: it goes on by itself.
void PatcherWindowTest::long_work_is_done_piece_by_piece() {
    open_boxes(embedding_list);
    long done = 0;
    queue_slow_tasks(10, done);
    QCoreApplication::sendPostedEvents();
    QVERIFY(done < 10);
    QTRY_COMPARE(done, 10);
}

void PatcherWindowTest::work_of_clocks_is_done_piece_by_piece() {
    long done = 0;
    void *clock = clock_new(&done, reinterpret_cast<method>(+[](long *count) { queue_slow_tasks(5, *count); }));
    clock_fdelay(clock, 1);
    bool is_drained;
    do
        is_drained = session().time().run();
    while (done == 0);
    object_free(clock);
    QVERIFY(!is_drained);
    QTRY_COMPARE(done, 5);
}

void PatcherWindowTest::saving_writes_the_file() {
    PatcherWindow *window = open_boxes(embedding_list);
    send("list", "append \"an item\"");
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_S, Qt::ControlModifier);
    QVERIFY(read_text(path_of("test.maxpat")).contains("an item"));
    QVERIFY(!session().documents().front()->is_changed());
}

void PatcherWindowTest::saving_as_takes_the_new_name() {
    PatcherWindow *window = open_boxes(message_box);
    when_asked([&](QDialog &dialog) {
        static_cast<QFileDialog &>(dialog).selectFile(path_of("other.maxpat"));
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    action(window, "Save As…")->trigger();
    QCOMPARE(window->windowTitle(), "other.maxpat[*]");
    QVERIFY(read_text(path_of("other.maxpat")).contains("\"go\""));
}

void PatcherWindowTest::reverting_reads_the_file_again() {
    PatcherWindow *window = open_boxes(embedding_list);
    send("list", "append one, append two");
    QCOMPARE(view().rows, 2);
    when_asked([&](QDialog &dialog) { press(dialog, QMessageBox::Discard); });
    action(window, "Revert")->trigger();
    settle();
    QCOMPARE(view().rows, 0);
    QVERIFY(!window->isWindowModified());
    QCOMPARE(session().documents().front()->windows().constFirst(), window);
}

void PatcherWindowTest::saving_over_a_changed_file_asks_data() {
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("kept");
    QTest::newRow("cancel") << int(QMessageBox::Cancel) << "theirs";
    QTest::newRow("save") << int(QMessageBox::Save) << "mine";
}

void PatcherWindowTest::saving_over_a_changed_file_asks() {
    QFETCH(int, answer);
    PatcherWindow *window = open_boxes(message_box);
    send("m", "set mine");
    replace_file("theirs");
    QString question;
    when_asked([&](QDialog &dialog) {
        auto &box = static_cast<QMessageBox &>(dialog);
        question = box.text();
        QCOMPARE(box.defaultButton(), box.button(QMessageBox::Cancel));
        press(dialog, static_cast<QMessageBox::StandardButton>(answer));
    });
    action(window, "Save")->trigger();
    QCOMPARE(question, "test.maxpat on the disk is not as it was opened or saved here. Save over it?");
    QFETCH(QString, kept);
    QVERIFY(read_text(path_of("test.maxpat")).contains(kept));
    QCOMPARE(value("m"), "mine");
}

void PatcherWindowTest::a_file_that_is_gone_is_saved_without_a_question() {
    PatcherWindow *window = open_boxes(message_box);
    QVERIFY(QFile::remove(path_of("test.maxpat")));
    action(window, "Save")->trigger();
    QVERIFY(QFile::exists(path_of("test.maxpat")));
}

void PatcherWindowTest::changes_on_the_disk_are_noticed_again_and_again() {
    PatcherWindow *window = open_boxes(message_box);
    auto *bar = window->findChild<ChangeBar *>();
    QVERIFY(!bar->isVisible());
    for (const QString label : {"first", "second", "third"}) {
        replace_file(label);
        QTRY_VERIFY(bar->isVisible());
        QCOMPARE(value("m"), label == "first" ? "go" : label == "second" ? "first" : "second");
        QTest::mouseClick(button_of(*bar, "Reload"), Qt::LeftButton);
        QVERIFY(!bar->isVisible());
        QCOMPARE(value("m"), label);
    }
    replace_file("kept out");
    QTRY_VERIFY(bar->isVisible());
    QTest::mouseClick(button_of(*bar, "Keep"), Qt::LeftButton);
    QVERIFY(!bar->isVisible());
    QCOMPARE(value("m"), "third");
    QVERIFY(QFile::remove(path_of("test.maxpat")));
    QTRY_VERIFY(bar->isVisible());
    QVERIFY(!button_of(*bar, "Reload")->isVisible());
}

void PatcherWindowTest::a_change_is_noticed_when_the_window_becomes_active() {
    PatcherWindow *window = open_boxes(message_box);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    replace_file("theirs");
    QEvent activation(QEvent::ActivationChange);
    QCoreApplication::sendEvent(window, &activation);
    QVERIFY(window->findChild<ChangeBar *>()->isVisible());
}

void PatcherWindowTest::reloading_loses_edits_only_when_that_is_wanted() {
    PatcherWindow *window = open_boxes(embedding_list);
    auto *bar = window->findChild<ChangeBar *>();
    send("list", "append mine");
    replace_file("theirs");
    QTRY_VERIFY(bar->isVisible());
    QCOMPARE(bar->findChild<QLabel *>()->text(),
             "test.maxpat has changed on the disk. Reloading it loses what you have changed.");
    when_asked([&](QDialog &dialog) {
        auto &box = static_cast<QMessageBox &>(dialog);
        QCOMPARE(box.defaultButton(), box.button(QMessageBox::Cancel));
        press(dialog, QMessageBox::Cancel);
    });
    QTest::mouseClick(button_of(*bar, "Reload"), Qt::LeftButton);
    QCOMPARE(view().rows, 1);
    when_asked([&](QDialog &dialog) { press(dialog, QMessageBox::Discard); });
    QTest::mouseClick(button_of(*bar, "Reload"), Qt::LeftButton);
    QCOMPARE(value("m"), "theirs");
}

void PatcherWindowTest::own_saving_is_not_a_change() {
    PatcherWindow *window = open_boxes(message_box);
    action(window, "Save")->trigger();
    action(window, "Save")->trigger();
    QEvent activation(QEvent::ActivationChange);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QCoreApplication::sendEvent(window, &activation);
    QVERIFY(!window->findChild<ChangeBar *>()->isVisible());
}

void PatcherWindowTest::save_that_fails_is_told_with_its_reason() {
    PatcherWindow *window = open_boxes(embedding_list);
    send("list", "append kept");
    QVERIFY(QDir(path_of("")).removeRecursively());
    QString told;
    when_asked([&](QDialog &dialog) {
        told = static_cast<QMessageBox &>(dialog).text();
        dialog.reject();
    });
    action(window, "Save")->trigger();
    QCOMPARE(told, "test.maxpat is not saved: No such file or directory");
    QVERIFY(window->isWindowModified());
}

void PatcherWindowTest::reverting_comes_after_what_is_queued() {
    PatcherWindow *window = open_boxes(embedding_list);
    long done = 0;
    queue_slow_tasks(10, done);
    queue("list", "append one, write one.xml");
    when_asked([&](QDialog &dialog) { press(dialog, QMessageBox::Discard); });
    action(window, "Revert")->trigger();
    QVERIFY(read_text(path_of("one.xml")).contains("one"));
}

void PatcherWindowTest::file_that_is_not_there_is_told() {
    PatcherWindow *window = open_boxes(message_box);
    QString told;
    when_asked([&](QDialog &dialog) {
        told = static_cast<QMessageBox &>(dialog).text();
        dialog.reject();
    });
    session().open_and_tell("missing.maxpat", window);
    QCOMPARE(told, "missing.maxpat cannot be opened: not found");
}

void PatcherWindowTest::files_are_dropped_in() {
    PatcherWindow *window = open_boxes(message_box);
    QFile::copy(path_of("test.maxpat"), path_of("dropped.maxpat"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path_of("dropped.maxpat"))});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(window, &drop);
    QCOMPARE(session().documents().size(), 2u);
    QCOMPARE(session().documents().back()->name(), "dropped.maxpat");
}

void PatcherWindowTest::recent_files_are_kept() {
    open_boxes(message_box);
    QCOMPARE(session().recent_files().constFirst(), path_of("test.maxpat"));
    QFile::copy(path_of("test.maxpat"), path_of("second.maxpat"));
    open(path_of("second.maxpat"));
    QCOMPARE(session().recent_files().mid(0, 2), QStringList({path_of("second.maxpat"), path_of("test.maxpat")}));
}

void PatcherWindowTest::inner_patcher_opens_on_double_click() {
    open_boxes(inner_json("p", "p inside", "", box_json("b", "button", "20, 20, 24, 24")));
    QTest::mouseDClick(widget("p"), Qt::LeftButton);
    Document &document = *session().documents().front();
    QCOMPARE(document.windows().size(), 2);
    QCOMPARE(document.windows().constLast()->windowTitle(), "inside in test.maxpat[*]");
    QTest::mouseClick(widget("p::b"), Qt::LeftButton);
    QCOMPARE(take_outputs(), QStringList("b:0 bang"));
    QTest::mouseDClick(widget("p"), Qt::LeftButton); // it has a window already
    QCOMPARE(document.windows().size(), 2);
    document.windows().constLast()->close();
    QCOMPARE(document.windows().size(), 1);
    QCOMPARE(session().documents().size(), 1u);
}

void PatcherWindowTest::tabs_show_inner_patchers() {
    PatcherWindow *window =
        open_boxes(inner_json("one", "p basic", "\"showontab\": 1,", message_box) + "," +
                       inner_json("two", "p ?", "\"showontab\": 1,", box_json("b", "button", "20, 20, 24, 24")),
                   {}, "\"showrootpatcherontab\": 0,");
    auto *tabs = window->findChild<QTabWidget *>();
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), "basic");
    QVERIFY(window->show_tab("?"));
    QVERIFY(!window->show_tab("none"));
    QCOMPARE(window->current_canvas()->patcher(), patcher_in(box("two")));
}

void PatcherWindowTest::presentation_shows_its_boxes() {
    const QString shown = "\"presentation\": 1, \"presentation_rect\": [5, 6, 40, 30]";
    PatcherWindow *window = open_boxes(box_json("in", "button", "100, 100, 24, 24", shown) + "," +
                                           box_json("out", "button", "20, 20, 24, 24"),
                                       {}, "\"openinpresentation\": 1,");
    QCOMPARE(widget("in")->geometry(), QRect(5, 6, 40, 30));
    QVERIFY(!widget("out")->isVisible());
    action(window, "Presentation")->trigger();
    QVERIFY(widget("out")->isVisible());
    QCOMPARE(widget("in")->x(), 100);
}

void PatcherWindowTest::console_counts_errors() {
    PatcherWindow *window = open_boxes(embedding_list);
    auto *dock = window->findChild<ConsoleDock *>();
    QVERIFY(dock->windowTitle().endsWith("no errors"));
    send("list", "nonsense, read missing.xml");
    QVERIFY(dock->windowTitle().endsWith("2 errors"));
    const ConsoleModel &console = session().console();
    const QModelIndex last = console.index(console.rowCount() - 1, 1);
    QCOMPARE(last.data().toString(), "can't find missing.xml");
    QCOMPARE(last.data(Qt::ForegroundRole).value<QColor>(), look_of(window->palette()).error);
    session().console().clear();
    QVERIFY(dock->windowTitle().endsWith("no errors"));
}

void PatcherWindowTest::dark_palette_keeps_texts_readable() {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(dark_palette());
    open_boxes(embedding_list);
    send("list", "append WWWWWW");
    const QImage picture = list()->viewport()->grab().toImage();
    QApplication::setPalette(before);
    QVERIFY(picture.pixelColor(picture.width() - 3, picture.height() - 3).lightness() < 60);
    int lightest = 0;
    for (int x = 0; x < 40; ++x)
        for (int y = 0; y < 14; ++y)
            lightest = std::max(lightest, picture.pixelColor(x, y).lightness());
    QVERIFY(lightest > 180);
    QCOMPARE(readable_on(Qt::black, Qt::white).rgba(), QColor(Qt::black).rgba());
    QCOMPARE(readable_on(Qt::black, Qt::black).rgba(), QColor(Qt::white).rgba());
}

void PatcherWindowTest::picture_is_what_the_window_shows() {
    PatcherWindow *window = open_boxes(message_box);
    QString reason;
    QVERIFY2(write_picture(*window, path_of("window.png"), reason), qPrintable(reason));
    const QImage picture(path_of("window.png"));
    QCOMPARE(picture.size(), window->size() * window->devicePixelRatio());
    const QPoint inside = widget("m")->mapTo(window, widget("m")->rect().center() + QPoint(30, 0));
    const QColor at_message = picture.pixelColor(inside * window->devicePixelRatio());
    QVERIFY(at_message != look_of(window->palette()).canvas);
    QVERIFY(!write_picture(*window, path_of("no-folder/window.png"), reason));
    QCOMPARE(reason, "No such file or directory");
}

// The window goes on while the rest of a line is still to come.
void PatcherWindowTest::script_is_played_as_it_is_written() {
    open_boxes(message_box);
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> out(std::tmpfile(), std::fclose);
    Transcript transcript(out.get());
    ScriptPlayer player(session(), transcript);
    QVERIFY(player.load(QString("/dev/fd/%1").arg(ends[0]).toStdString()));
    player.start(session().documents().front().get());
    const auto write_down = [&](const QByteArray &text) { return write(ends[1], text.constData(), text.size()); };
    write_down("m one\nm bang\nm set t");
    QTRY_COMPARE(outputs(), QStringList({"m:0 go", "m:0 go"}));
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
    QCOMPARE(value("m"), "go");
    write_down("wo\nm bang"); // without an end
    QTRY_COMPARE(value("m"), "two");
    QVERIFY(player.is_playing());
    close(ends[1]);
    QTRY_VERIFY(!player.is_playing());
    close(ends[0]);
    QCOMPARE(outputs(), QStringList({"m:0 go", "m:0 go", "m:0 two"}));
    QCOMPARE(player.failure(), "");
}

int run_patcherwindow_tests(int argc, char **argv) {
    PatcherWindowTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "patcherwindow-test.moc"
