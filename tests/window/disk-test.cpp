// Files that other programs change while windows show them: what a window notices, and what it asks.
#include "vrk.jxmlfile.h" // libxml2's headers come before the host's

#include "window-test.h"

#include <cstdio>

#include <QStatusBar>

#include "scriptplayer.h"
#include "xmldocument.h"

using namespace maxhost;

namespace {

const QString message_box = box_json("m", "message", "20, 20, 80, 22", "\"text\": \"go\"");

// A plug-in's object with a document, which it reads when it is told to, and an editor on that.
struct Owner {
    t_object object;
    t_jxmlfile *holder;
    bool refuses; // texts, without a word
};

long take_text(Owner *x, char **text, long size, const char *name, t_ptr_int folder) {
    return x->refuses ? -1 : jxmlfile_edsave(x->holder, text, size, name, static_cast<short>(folder));
}

void take_end(Owner *x, char **text, long size) { jxmlfile_edclose(x->holder, text, size); }

void free_owner(Owner *x) { jxmlfile_free(x->holder); }

Owner *new_owner() {
    static t_class *owner_class;
    if (!owner_class) {
        owner_class =
            class_new("owner", nullptr, reinterpret_cast<method>(free_owner), sizeof(Owner), nullptr, A_GIMME, 0);
        class_addmethod(owner_class, reinterpret_cast<method>(take_text), "edsave", A_CANT, 0);
        class_addmethod(owner_class, reinterpret_cast<method>(take_end), "edclose", A_CANT, 0);
        class_register(CLASS_NOBOX, owner_class);
    }
    auto *owner = static_cast<Owner *>(object_alloc(owner_class));
    owner->holder = jxmlfile_new(&owner->object);
    owner->refuses = false;
    return owner;
}

} // namespace

class DiskTest : public WindowTest {
    Q_OBJECT

  private Q_SLOTS:
    void editor_of_an_unchanged_file_is_quiet();
    void editor_knows_what_its_owner_has_not_read();
    void reading_the_file_again_leaves_the_editor_with_its_question();
    void reading_another_file_makes_the_editor_ask_for_that();
    void changes_while_the_question_is_open_are_asked_about();
    void a_file_that_comes_back_is_no_change();
    void a_busy_folder_puts_nothing_off();
    void a_patcher_that_a_script_saves_is_followed();
    void an_owner_may_go_while_its_editor_asks();
    void a_text_that_is_refused_without_a_word_is_told();
    void cleanup();

  private:
    void write_xml(const QString &name, const QString &text);
    void read(const QString &file); // by the owner of the editor
    EditorWindow *open_editor();
    ChangeBar &bar_of(const QWidget *window) const { return *window->findChild<ChangeBar *>(); }
    QString text_of_bar(const QWidget *window) const { return bar_of(window).findChild<QLabel *>()->text(); }

    Owner *owner_ = nullptr;

    // Types a text into the editor and saves it; how many questions that took, each answered with the button.
    int questions_of_save(EditorWindow *window, const QString &text, QMessageBox::StandardButton answer);
};

void DiskTest::write_xml(const QString &name, const QString &text) {
    QFile file(path_of(name));
    QVERIFY(file.open(QFile::WriteOnly));
    file.write("<?xml version=\"1.0\"?><resourcefile><resource><string number=\"1\">" + text.toUtf8() +
               "</string></resource></resourcefile>\n");
}

void DiskTest::cleanup() {
    if (owner_)
        object_free(std::exchange(owner_, nullptr));
    WindowTest::cleanup();
}

void DiskTest::read(const QString &file) {
    register_xml_document();
    if (!owner_)
        owner_ = new_owner();
    jxmlfile_read(owner_->holder, gensym(qPrintable(path_of(file))));
    settle();
}

EditorWindow *DiskTest::open_editor() {
    jxmlfile_open(owner_->holder);
    settle();
    for (QWidget *window : QApplication::topLevelWidgets())
        if (auto *editor = qobject_cast<EditorWindow *>(window))
            return editor;
    return nullptr;
}

int DiskTest::questions_of_save(EditorWindow *window, const QString &text, QMessageBox::StandardButton answer) {
    window->text().selectAll();
    window->text().insertPlainText(text);
    int questions = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
            ++questions;
            press(*dialog, answer);
        }
    });
    timer.start(0);
    window->save();
    return questions;
}

void DiskTest::editor_of_an_unchanged_file_is_quiet() {
    write_xml("a.xml", "one");
    read("a.xml");
    EditorWindow *window = open_editor();
    QVERIFY(window);
    QVERIFY(!bar_of(window).isVisible());
    QCOMPARE(questions_of_save(window, "<mine/>", QMessageBox::Cancel), 0);
    QVERIFY(read_text(path_of("a.xml")).contains("<mine/>"));
    QCOMPARE(questions_of_save(window, "<mine>again</mine>", QMessageBox::Cancel), 0);
    QVERIFY(!bar_of(window).isVisible());
}

void DiskTest::editor_knows_what_its_owner_has_not_read() {
    write_xml("a.xml", "one");
    read("a.xml");
    write_xml("a.xml", "theirs");
    EditorWindow *window = open_editor();
    QVERIFY(window->text().toPlainText().contains("one"));
    QVERIFY(bar_of(window).isVisible());
    QCOMPARE(text_of_bar(window), "a.xml on the disk is not what is shown here.");
    QCOMPARE(questions_of_save(window, "<mine/>", QMessageBox::Cancel), 1);
    QVERIFY(read_text(path_of("a.xml")).contains("theirs"));
    QTest::mouseClick(button_of(bar_of(window), "Reload"), Qt::LeftButton);
    QVERIFY(window->text().toPlainText().contains("theirs"));
    QCOMPARE(questions_of_save(window, "<mine/>", QMessageBox::Cancel), 0);
}

void DiskTest::reading_the_file_again_leaves_the_editor_with_its_question() {
    write_xml("a.xml", "one");
    read("a.xml");
    EditorWindow *window = open_editor();
    write_xml("a.xml", "theirs");
    QTRY_VERIFY(bar_of(window).isVisible());
    read("a.xml");
    QVERIFY(bar_of(window).isVisible());
    QCOMPARE(questions_of_save(window, "<mine/>", QMessageBox::Cancel), 1);
    QVERIFY(read_text(path_of("a.xml")).contains("theirs"));
    window->text().document()->setModified(false);
}

void DiskTest::reading_another_file_makes_the_editor_ask_for_that() {
    write_xml("a.xml", "one");
    write_xml("b.xml", "other");
    read("a.xml");
    EditorWindow *window = open_editor();
    read("b.xml");
    QVERIFY(window->text().toPlainText().contains("one"));
    QVERIFY(bar_of(window).isVisible());
    QCOMPARE(text_of_bar(window), "b.xml on the disk is not what is shown here.");
    QCOMPARE(questions_of_save(window, "<mine/>", QMessageBox::Cancel), 1);
    QVERIFY(read_text(path_of("b.xml")).contains("other"));
    window->text().document()->setModified(false);
}

void DiskTest::changes_while_the_question_is_open_are_asked_about() {
    write_xml("a.xml", "one");
    QWidget window;
    int questions = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        if (++questions == 1)
            write_xml("a.xml", "theirs, and longer");
        press(*dialog, QMessageBox::Save);
    });
    timer.start(0);
    QVERIFY(may_save_over(path_of("a.xml"), &window));
    QCOMPARE(questions, 2);
}

void DiskTest::a_file_that_comes_back_is_no_change() {
    PatcherWindow *window = open_boxes(message_box);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(std::rename(qPrintable(path_of("test.maxpat")), qPrintable(path_of("x"))), 0);
        QTRY_VERIFY(bar_of(window).isVisible());
        QCOMPARE(text_of_bar(window), "test.maxpat is no longer on the disk. Saving makes it again.");
        QCOMPARE(std::rename(qPrintable(path_of("x")), qPrintable(path_of("test.maxpat"))), 0);
        QTRY_VERIFY(!bar_of(window).isVisible());
    }
}

// Another file comes and goes without a pause.
void DiskTest::a_busy_folder_puts_nothing_off() {
    PatcherWindow *window = open_boxes(message_box);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window)); // which looks at the file as well
    QTimer busy;
    connect(&busy, &QTimer::timeout, this, [this] {
        if (!QFile::remove(path_of("other")))
            QVERIFY(QFile(path_of("other")).open(QFile::WriteOnly));
    });
    busy.start(5);
    QVERIFY(QFile::remove(path_of("test.maxpat")));
    QTRY_VERIFY(bar_of(window).isVisible());
}

void DiskTest::a_patcher_that_a_script_saves_is_followed() {
    PatcherWindow *window = open_boxes(message_box);
    WindowStage stage(session());
    stage.begin_with(session().documents().front().get());
    QVERIFY(QFile::remove(path_of("test.maxpat")));
    QTRY_VERIFY(bar_of(window).isVisible());
    std::string reason;
    QVERIFY(!stage.save(path_of("none/b.maxpat").toStdString(), reason));
    QVERIFY(bar_of(window).isVisible());
    QVERIFY2(stage.save("b.maxpat", reason), reason.c_str());
    QVERIFY(!bar_of(window).isVisible());
    QCOMPARE(window->windowTitle(), "b.maxpat[*]");
    QVERIFY(QFile::remove(path_of("b.maxpat")));
    QTRY_VERIFY(bar_of(window).isVisible());
    QCOMPARE(text_of_bar(window), "b.maxpat is no longer on the disk. Saving makes it again.");
}

void DiskTest::a_text_that_is_refused_without_a_word_is_told() {
    write_xml("a.xml", "one");
    read("a.xml");
    EditorWindow *window = open_editor();
    owner_->refuses = true;
    QCOMPARE(questions_of_save(window, "<mine/>", QMessageBox::Cancel), 0);
    QCOMPARE(window->statusBar()->currentMessage(), "Not saved: the text is refused");
    window->text().document()->setModified(false);
}

// The window goes with its owner, and the question with the window.
void DiskTest::an_owner_may_go_while_its_editor_asks() {
    write_xml("a.xml", "one");
    read("a.xml");
    QPointer<EditorWindow> window = open_editor();
    window->text().insertPlainText("mine");
    when_asked([&](QDialog &) { object_free(std::exchange(owner_, nullptr)); });
    window->close();
    QVERIFY(!window);
    QVERIFY(!session().editors().are_open());
}

int run_disk_tests(int argc, char **argv) {
    DiskTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "disk-test.moc"
