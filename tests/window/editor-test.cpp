// The text editor window: editing, saving to the owner, finding, closing.
#include "window-test.h"

#include <QDir>
#include <QLineEdit>
#include <QStatusBar>
#include <QTextBlock>
#include <QTextLayout>

#include "ext_post.h"
#include "xmldocument.h"

using namespace maxhost;

class EditorTest : public WindowTest {
    Q_OBJECT

  private Q_SLOTS:
    void opens_with_text_and_title();
    void saves_to_the_file();
    void text_that_does_not_parse_is_not_saved();
    void saving_over_a_changed_file_asks_data();
    void saving_over_a_changed_file_asks();
    void changes_on_the_disk_are_noticed();
    void reloading_keeps_letters_of_other_encodings();
    void a_file_that_cannot_be_read_again_is_told();
    void file_that_cannot_be_written_is_told();
    void no_break_spaces_are_kept();
    void what_is_found_later_is_told();
    void closing_asks_when_unsaved_data();
    void closing_asks_when_unsaved();
    void finds_and_goes_round();
    void colors_xml();
    void file_that_is_no_xml_is_refused();

  private:
    void write_file(const QString &content);
    void write_bytes(const QByteArray &bytes);
    EditorWindow *edit(const QString &content);
    static QColor color_at(const CodeEdit &text, int line, int column);
};

void EditorTest::write_file(const QString &content) { write_bytes(("<?xml version=\"1.0\"?>\n" + content).toUtf8()); }

void EditorTest::write_bytes(const QByteArray &bytes) {
    QFile file(path_of("list.xml"));
    if (!file.open(QFile::WriteOnly))
        qFatal("the file cannot be written");
    file.write(bytes);
}

EditorWindow *EditorTest::edit(const QString &content) {
    write_file(content);
    register_xml_document();
    QString reason;
    if (!edit_xml_file(path_of("list.xml"), reason))
        qFatal("%s", qPrintable(reason));
    settle();
    for (QWidget *window : QApplication::topLevelWidgets())
        if (auto *editor = qobject_cast<EditorWindow *>(window))
            return editor;
    return nullptr;
}

QColor EditorTest::color_at(const CodeEdit &text, int line, int column) {
    for (const QTextLayout::FormatRange &range : text.document()->findBlockByNumber(line).layout()->formats())
        if (range.start <= column && column < range.start + range.length)
            return range.format.foreground().color();
    return {};
}

void EditorTest::opens_with_text_and_title() {
    EditorWindow *window = edit("<a><b>text</b></a>");
    QVERIFY(window->isVisible());
    QCOMPARE(window->windowTitle(), "list.xml[*]");
    QCOMPARE(window->text().toPlainText(), "<?xml version=\"1.0\"?>\n<a>\n  <b>text</b>\n</a>\n");
    QVERIFY(!window->isWindowModified());
}

void EditorTest::saves_to_the_file() {
    EditorWindow *window = edit("<a/>");
    window->text().selectAll();
    QTest::keyClicks(&window->text(), "<a>typed</a>");
    QVERIFY(window->isWindowModified());
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_S, Qt::ControlModifier);
    QVERIFY(!window->isWindowModified());
    QVERIFY(read_text(path_of("list.xml")).contains("<a>typed</a>"));
}

void EditorTest::no_break_spaces_are_kept() {
    EditorWindow *window = edit("<a/>");
    window->text().selectAll();
    window->text().insertPlainText(QString::fromUtf8("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>x\xC2\xA0y</a>"));
    QVERIFY(window->save());
    QVERIFY(read_text(path_of("list.xml")).contains(QString::fromUtf8("<a>x\xC2\xA0y</a>")));
}

void EditorTest::text_that_does_not_parse_is_not_saved() {
    EditorWindow *window = edit("<a/>");
    window->text().selectAll();
    const QString text = "<a>\n  <b>\n  </c>\n</a>";
    window->text().insertPlainText(text);
    window->text().moveCursor(QTextCursor::Start);
    when_asked([&](QDialog &dialog) { press(dialog, QMessageBox::Save); });
    QVERIFY(!window->close());
    QVERIFY(window->isVisible());
    QVERIFY(window->isWindowModified());
    QCOMPARE(window->statusBar()->currentMessage(),
             "Not saved: line 3, column 7: Opening and ending tag mismatch: b line 2 and c");
    QCOMPARE(window->text().textCursor().blockNumber(), 2);
    QCOMPARE(window->text().textCursor().positionInBlock(), 6);
    QCOMPARE(window->text().toPlainText(), text);
    QVERIFY(read_text(path_of("list.xml")).contains("<a/>"));
    window->text().document()->setModified(false);
}

void EditorTest::saving_over_a_changed_file_asks_data() {
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("kept");
    QTest::newRow("cancel") << int(QMessageBox::Cancel) << "theirs";
    QTest::newRow("save") << int(QMessageBox::Save) << "mine";
}

void EditorTest::saving_over_a_changed_file_asks() {
    QFETCH(int, answer);
    QFETCH(QString, kept);
    EditorWindow *window = edit("<a/>");
    window->text().selectAll();
    window->text().insertPlainText("<a>mine</a>");
    write_file("<a>theirs</a>");
    bool was_asked = false;
    when_asked([&](QDialog &dialog) {
        was_asked = true;
        press(dialog, static_cast<QMessageBox::StandardButton>(answer));
    });
    QCOMPARE(window->save(), answer == QMessageBox::Save);
    QVERIFY(was_asked);
    QVERIFY(read_text(path_of("list.xml")).contains(kept));
    QVERIFY(window->text().toPlainText().contains("mine"));
    QVERIFY(window->isWindowModified() == (answer == QMessageBox::Cancel));
    window->text().document()->setModified(false);
}

void EditorTest::changes_on_the_disk_are_noticed() {
    EditorWindow *window = edit("<a/>");
    auto *bar = window->findChild<ChangeBar *>();
    for (const QString content : {"first", "second"}) {
        write_file("<a>" + content + "</a>");
        QTRY_VERIFY(bar->isVisible());
        QVERIFY(!window->text().toPlainText().contains(content));
        QTest::mouseClick(button_of(*bar, "Reload"), Qt::LeftButton);
        QVERIFY(!bar->isVisible());
        QVERIFY(window->text().toPlainText().contains(content));
        QVERIFY(!window->isWindowModified());
    }
    window->text().insertPlainText(" ");
    write_file("<a>third</a>");
    QTRY_VERIFY(bar->isVisible());
    QCOMPARE(bar->findChild<QLabel *>()->text(),
             "list.xml has changed on the disk. Reloading it loses what you have changed.");
    QTest::mouseClick(button_of(*bar, "Keep"), Qt::LeftButton);
    QVERIFY(window->text().toPlainText().contains("second"));
    window->text().document()->setModified(false);
}

void EditorTest::reloading_keeps_letters_of_other_encodings() {
    EditorWindow *window = edit("<a/>");
    auto *bar = window->findChild<ChangeBar *>();
    write_bytes("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xE9t\xE9</a>\n");
    QTRY_VERIFY(bar->isVisible());
    QTest::mouseClick(button_of(*bar, "Reload"), Qt::LeftButton);
    QCOMPARE(window->text().toPlainText(),
             QString::fromUtf8("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\u00E9t\u00E9</a>\n"));
}

void EditorTest::a_file_that_cannot_be_read_again_is_told() {
    EditorWindow *window = edit("<a>held</a>");
    auto *bar = window->findChild<ChangeBar *>();
    write_file("<a");
    QTRY_VERIFY(bar->isVisible());
    QString told;
    when_asked([&](QDialog &dialog) {
        told = static_cast<QMessageBox &>(dialog).text();
        dialog.reject();
    });
    QTest::mouseClick(button_of(*bar, "Reload"), Qt::LeftButton);
    QCOMPARE(told, "list.xml cannot be read again: no XML file that can be parsed");
    QVERIFY(window->text().toPlainText().contains("held"));
}

void EditorTest::file_that_cannot_be_written_is_told() {
    EditorWindow *window = edit("<a/>");
    QFile::remove(path_of("list.xml"));
    QVERIFY(QDir().mkdir(path_of("list.xml")));
    window->text().selectAll();
    QTest::keyClicks(&window->text(), "<a>typed</a>");
    when_asked([&](QDialog &dialog) { press(dialog, QMessageBox::Save); }); // something else is there now
    QVERIFY(!window->save());
    QVERIFY(window->statusBar()->currentMessage().contains("unable to write list.xml (Is a directory)"));
}

void EditorTest::what_is_found_later_is_told() {
    EditorWindow *window = edit("<a/>");
    long done = 0;
    queue_slow_tasks(10, done);
    const auto complain = +[](void *) { object_error(nullptr, "no room"); };
    defer_low(window, reinterpret_cast<method>(complain), nullptr, 0, nullptr);
    QVERIFY(!window->save());
    QCOMPARE(window->statusBar()->currentMessage(), "Not saved: no room");
}

void EditorTest::closing_asks_when_unsaved_data() {
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("is_closed");
    QTest::addColumn<bool>("is_saved");
    QTest::newRow("cancel") << int(QMessageBox::Cancel) << false << false;
    QTest::newRow("discard") << int(QMessageBox::Discard) << true << false;
    QTest::newRow("save") << int(QMessageBox::Save) << true << true;
}

void EditorTest::closing_asks_when_unsaved() {
    QFETCH(int, answer);
    EditorWindow *window = edit("<a/>");
    window->text().selectAll();
    QTest::keyClicks(&window->text(), "<a>typed</a>");
    when_asked([&](QDialog &dialog) { press(dialog, static_cast<QMessageBox::StandardButton>(answer)); });
    window->close();
    QTEST(!session().editors().are_open(), "is_closed");
    QTEST(read_text(path_of("list.xml")).contains("typed"), "is_saved");
}

void EditorTest::finds_and_goes_round() {
    EditorWindow *window = edit("<a><b>one</b><c>two</c><d>one</d></a>");
    window->find_bar().open();
    auto *wanted = window->find_bar().findChild<QLineEdit *>();
    QTest::keyClicks(wanted, "one");
    QCOMPARE(window->text().textCursor().selectedText(), "one");
    const int first = window->text().textCursor().blockNumber();
    QTest::keyClick(wanted, Qt::Key_Return);
    QCOMPARE(window->text().textCursor().blockNumber(), first + 2);
    QVERIFY(window->find_bar().find_next());
    QCOMPARE(window->text().textCursor().blockNumber(), first);
    QVERIFY(window->find_bar().find_previous());
    QCOMPARE(window->text().textCursor().blockNumber(), first + 2);
    wanted->setText("three");
    QVERIFY(!window->find_bar().find_next());
}

void EditorTest::colors_xml() {
    EditorWindow *window = edit("<a/>");
    CodeEdit &text = window->text();
    text.setPlainText("<tag name=\"value\">text &amp; more</tag>\n<!-- a\ncomment --><x/>\n<two\n  lines='v'/>");
    text.document()->setModified(false);
    const QColor element = color_at(text, 0, 1), attribute = color_at(text, 0, 6), value = color_at(text, 0, 12);
    QVERIFY(element.isValid() && attribute.isValid() && value.isValid());
    QVERIFY(element != attribute && attribute != value && value != element);
    QCOMPARE(color_at(text, 0, 19), QColor()); // the text itself
    QVERIFY(color_at(text, 0, 25).isValid());  // an entity
    QCOMPARE(color_at(text, 2, 2), color_at(text, 1, 2));
    QCOMPARE(color_at(text, 2, 12), element);
    QCOMPARE(color_at(text, 4, 3), attribute);
    QCOMPARE(color_at(text, 4, 9), value);
}

void EditorTest::file_that_is_no_xml_is_refused() {
    QFile file(path_of("no.xml"));
    QVERIFY(file.open(QFile::WriteOnly));
    file.write("no xml");
    file.close();
    register_xml_document();
    QString reason;
    QVERIFY(!edit_xml_file(path_of("no.xml"), reason));
    QVERIFY(!edit_xml_file(path_of("missing.xml"), reason));
    QCOMPARE(reason, "not found");
    QVERIFY(!session().editors().are_open());
}

int run_editor_tests(int argc, char **argv) {
    EditorTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "editor-test.moc"
