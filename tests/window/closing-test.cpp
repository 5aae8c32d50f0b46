// Closing a window in any state leaves nothing alive: every test here ends with the count of blocks and objects.
#include "window-test.h"

#include <cstdio>
#include <memory>

#include <QEventLoop>
#include <QFileDialog>

#include "ext_proto.h"
#include "scriptplayer.h"
#include "xmldocument.h"

using namespace maxhost;

namespace {

const QString list_box = box_json("list", "vrk.tessaroll", "20, 60, 100, 80");
const QString embedding_list = box_json("list", "vrk.tessaroll", "20, 60, 100, 80", "\"embed\": 1");

} // namespace

class ClosingTest : public WindowTest {
    Q_OBJECT

  private Q_SLOTS:
    void with_a_save_dialog_open();
    void with_two_dialogs_to_come();
    void with_an_alert_open();
    void with_an_unsaved_editor();
    void with_work_in_the_queue();
    void after_what_is_queued();
    void with_a_change_in_the_queue();
    void with_a_clock_running();
    void while_the_scheduler_is_busy();
    void with_a_text_half_typed();
    void with_windows_of_inner_patchers();
    void of_one_of_two();
    void from_within_a_click();
    void by_a_script_after_its_question();

  private:
    bool nothing_is_left();
};

bool ClosingTest::nothing_is_left() {
    const MemoryInUse left = memory_in_use();
    return session().documents().empty() && left.blocks == 0 && left.objects == 0;
}

void ClosingTest::with_a_save_dialog_open() {
    PatcherWindow *window = open_boxes(list_box);
    send("list", "append one");
    bool was_open = false;
    when_asked([&](QDialog &dialog) {
        was_open = qobject_cast<QFileDialog *>(&dialog) != nullptr;
        window->close();
    });
    send("list", "write"); // the dialog is open until the window closes
    QVERIFY(was_open);
    QTRY_VERIFY(nothing_is_left());
}

void ClosingTest::with_two_dialogs_to_come() {
    PatcherWindow *window = open_boxes(list_box);
    send("list", "append one");
    when_asked([&](QDialog &) { window->close(); });
    send("list", "write, write, write");
    QTRY_VERIFY(nothing_is_left());
}

void ClosingTest::with_an_alert_open() {
    PatcherWindow *window = open_boxes(list_box);
    when_asked([&](QDialog &) { window->close(); });
    session().front_end().alert("something");
    QTRY_VERIFY(nothing_is_left());
}

void ClosingTest::with_an_unsaved_editor() {
    PatcherWindow *window = open_boxes(list_box);
    QFile file(path_of("list.xml"));
    QVERIFY(file.open(QFile::WriteOnly));
    file.write("<?xml version=\"1.0\"?><a/>");
    file.close();
    register_xml_document();
    QString reason;
    QVERIFY(edit_xml_file(path_of("list.xml"), reason));
    settle();
    for (QWidget *each : QApplication::topLevelWidgets())
        if (auto *editor = qobject_cast<EditorWindow *>(each))
            QTest::keyClicks(&editor->text(), "unsaved");
    window->close();
    session().close_all();
    QVERIFY(nothing_is_left());
}

void ClosingTest::with_work_in_the_queue() {
    PatcherWindow *window = open_boxes(list_box);
    for (int i = 0; i < 10; ++i)
        send_message(box("list"), parse_atoms("append queued"));
    window->close();
    QTRY_VERIFY(nothing_is_left());
}

void ClosingTest::after_what_is_queued() {
    PatcherWindow *window = open_boxes(list_box);
    long done = 0;
    queue_slow_tasks(10, done);
    queue("list", "append one, write one.xml");
    window->close();
    QTRY_VERIFY(nothing_is_left());
    QVERIFY(read_text(path_of("one.xml")).contains("one"));
}

void ClosingTest::with_a_change_in_the_queue() {
    PatcherWindow *window = open_boxes(embedding_list);
    const auto append = +[](t_object *list) { send_message(list, parse_atoms("append one")); };
    defer_low(box("list"), reinterpret_cast<method>(append), nullptr, 0, nullptr);
    when_asked([&](QDialog &dialog) { press(dialog, QMessageBox::Cancel); });
    QVERIFY(!window->close());
    QCOMPARE(session().documents().size(), 1u);
}

void ClosingTest::with_a_clock_running() {
    PatcherWindow *window =
        open_boxes(list_box + "," + box_json("m", "newobj", "20, 20, 80, 22", "\"text\": \"metro 1\""),
                   cord_json("m", 0, "list", 0));
    send("m", "1");
    QTRY_VERIFY(outputs().count("m:0 bang") > 3);
    window->close();
    QTRY_VERIFY(nothing_is_left());
    QVERIFY(!next_clock_due());
}

void ClosingTest::while_the_scheduler_is_busy() {
    PatcherWindow *window =
        open_boxes(list_box + "," + box_json("n", "number", "20, 200, 60, 22"), cord_json("list", 0, "n", 0));
    send("list", "append one, append two");
    for (int i = 0; i < 500; ++i)
        send_on_scheduler(box("list"), parse_atoms(i % 2 ? "set 1" : "append busy"));
    window->close();
    QTRY_VERIFY(session().documents().empty());
    wait_until_delivered();
    QTRY_VERIFY(nothing_is_left());
}

void ClosingTest::with_a_text_half_typed() {
    PatcherWindow *window =
        open_boxes(box_json("t", "textedit", "20, 20, 120, 80") + "," + box_json("n", "number", "20, 120, 60, 22"));
    window->activateWindow();
    auto *field = widget("t")->findChild<QPlainTextEdit *>();
    field->setFocus();
    QTest::keyClicks(field, "half");
    QTest::keyClick(widget("n"), Qt::Key_4);
    window->close();
    QTRY_VERIFY(nothing_is_left());
}

void ClosingTest::with_windows_of_inner_patchers() {
    PatcherWindow *window = open_boxes(box_json("p", "newobj", "20, 20, 80, 22",
                                                "\"text\": \"p in\", \"patcher\": {\"fileversion\": 1, \"boxes\": [" +
                                                    list_box + "], \"lines\": []}"));
    QTest::mouseDClick(widget("p"), Qt::LeftButton);
    send("p::list", "append one");
    QCOMPARE(session().documents().front()->windows().size(), 2);
    window->close();
    QTRY_VERIFY(nothing_is_left());
}

void ClosingTest::of_one_of_two() {
    PatcherWindow *first = open_boxes(list_box);
    QFile::copy(path_of("test.maxpat"), path_of("second.maxpat"));
    open(path_of("second.maxpat"));
    first->close();
    QTRY_COMPARE(session().documents().size(), 1u);
    QCOMPARE(session().documents().front()->name(), "second.maxpat");
    settle();
}

// An alert comes up while a message box is clicked, and the window goes before the click is over.
void ClosingTest::from_within_a_click() {
    PatcherWindow *window =
        open_boxes(list_box + "," + box_json("m", "message", "20, 20, 80, 22", "\"text\": \"write\""),
                   cord_json("m", 0, "list", 0));
    send("list", "append one");
    when_asked([&](QDialog &) { window->close(); });
    QTest::mouseClick(widget("m"), Qt::LeftButton);
    QTRY_VERIFY(nothing_is_left());
}

// The window asks a person while a script plays that closes it: the answer comes before the script's next line.
void ClosingTest::by_a_script_after_its_question() {
    PatcherWindow *window = open_boxes(embedding_list);
    send("list", "append one");
    QFile script(path_of("close.script"));
    QVERIFY(script.open(QFile::WriteOnly));
    script.write("host close\n");
    script.close();
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> out(std::tmpfile(), std::fclose);
    Transcript transcript(out.get());
    ScriptPlayer player(session(), transcript);
    QVERIFY(player.load(script.fileName().toStdString()));
    bool has_waited = false;
    when_asked([&](QDialog &dialog) {
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
        has_waited = player.is_playing();
        press(dialog, QMessageBox::Cancel);
    });
    QEventLoop loop; // as the application's
    connect(&player, &ScriptPlayer::ended, &loop, &QEventLoop::quit);
    QTimer::singleShot(0, window, [&] {
        player.start(session().documents().front().get());
        window->close();
    });
    loop.exec();
    QVERIFY(has_waited);
    QVERIFY(nothing_is_left());
}

int run_closing_tests(int argc, char **argv) {
    ClosingTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "closing-test.moc"
