// The boxes around a list: what a click, a drag or a key does to each.
#include "window-test.h"

#include <QAccessible>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStatusBar>

using namespace maxhost;

class BoxesTest : public WindowTest {
    Q_OBJECT

  private Q_SLOTS:
    void message_is_sent_by_click_and_space();
    void message_shows_what_it_is_set_to();
    void button_sends_bang();
    void toggle_switches();
    void number_is_typed();
    void typing_is_given_up();
    void number_is_dragged();
    void number_steps_with_arrow_keys();
    void float_is_dragged_finely_behind_the_point();
    void text_is_entered_with_return();
    void text_of_lines_is_entered_when_it_is_left();
    void message_does_not_disturb_typing();
    void assistance_shows_on_hover();
    void tabulator_goes_from_box_to_box();
    void boxes_have_roles_and_names();
    void box_moves_with_its_rectangle();
    void boxes_come_and_go();
    void hidden_boxes_do_not_show();
    void metro_ticks();

  private:
    void drag(QWidget *widget, QPoint from, QPoint to);
};

void BoxesTest::drag(QWidget *widget, QPoint from, QPoint to) {
    QTest::mousePress(widget, Qt::LeftButton, {}, from);
    QTest::mouseMove(widget, (from + to) / 2);
    QTest::mouseMove(widget, to);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, to);
}

void BoxesTest::message_is_sent_by_click_and_space() {
    open_boxes(box_json("m", "message", "20, 20, 80, 22", "\"text\": \"one two\""));
    QTest::mouseClick(widget("m"), Qt::LeftButton);
    QCOMPARE(take_outputs(), QStringList("m:0 one two"));
    QTest::keyClick(widget("m"), Qt::Key_Space);
    QCOMPARE(take_outputs(), QStringList("m:0 one two"));
    QTest::mouseClick(widget("m"), Qt::RightButton);
    QCOMPARE(take_outputs(), QStringList());
}

void BoxesTest::message_shows_what_it_is_set_to() {
    open_boxes(box_json("m", "message", "20, 20, 80, 22", "\"text\": \"before\""));
    const QImage before = widget("m")->grab().toImage();
    send("m", "set after it");
    QCOMPARE(value("m"), "after it");
    QVERIFY(widget("m")->grab().toImage() != before);
}

void BoxesTest::button_sends_bang() {
    open_boxes(box_json("b", "button", "20, 20, 24, 24"));
    QTest::mouseClick(widget("b"), Qt::LeftButton);
    QTest::keyClick(widget("b"), Qt::Key_Return);
    QCOMPARE(take_outputs(), QStringList({"b:0 bang", "b:0 bang"}));
}

void BoxesTest::toggle_switches() {
    open_boxes(box_json("t", "toggle", "20, 20, 24, 24"));
    QTest::mouseClick(widget("t"), Qt::LeftButton);
    QVERIFY(widget("t")->is_on());
    QTest::keyClick(widget("t"), Qt::Key_Space);
    QVERIFY(!widget("t")->is_on());
    QCOMPARE(take_outputs(), QStringList({"t:0 1", "t:0 0"}));
}

void BoxesTest::number_is_typed() {
    open_boxes(box_json("n", "number", "20, 20, 60, 22"));
    QTest::keyClick(widget("n"), Qt::Key_4);
    auto *field = widget("n")->findChild<QLineEdit *>();
    QTest::keyClicks(field, "2");
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(take_outputs(), QStringList({"n:1 bang", "n:0 42"}));
    QVERIFY(field->isHidden());
    QTest::mouseClick(widget("n"), Qt::LeftButton);
    QVERIFY(!field->isHidden());
    QTest::keyClicks(field, "no number");
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(value("n"), "42");
}

void BoxesTest::typing_is_given_up() {
    open_boxes(box_json("n", "number", "20, 20, 60, 22"));
    QTest::keyClick(widget("n"), Qt::Key_7);
    QTest::keyClick(widget("n")->findChild<QLineEdit *>(), Qt::Key_Escape);
    QCOMPARE(value("n"), "0");
    QCOMPARE(take_outputs(), QStringList());
}

void BoxesTest::number_is_dragged() {
    open_boxes(box_json("n", "number", "20, 40, 60, 22", "\"maximum\": 8"));
    drag(widget("n"), {30, 15}, {30, 5});
    QCOMPARE(value("n"), "5");
    QCOMPARE(take_outputs(), QStringList({"n:0 2", "n:0 5", "n:1 bang"}));
    drag(widget("n"), {30, 15}, {30, -45});
    QCOMPARE(value("n"), "8");
    drag(widget("n"), {30, 15}, {30, 17});
    QCOMPARE(value("n"), "7");
}

void BoxesTest::number_steps_with_arrow_keys() {
    open_boxes(box_json("n", "number", "20, 20, 60, 22"));
    QTest::keyClick(widget("n"), Qt::Key_Up);
    QTest::keyClick(widget("n"), Qt::Key_Up, Qt::ShiftModifier);
    QTest::keyClick(widget("n"), Qt::Key_Down);
    QCOMPARE(take_outputs(), QStringList({"n:0 1", "n:0 11", "n:0 10"}));
}

void BoxesTest::float_is_dragged_finely_behind_the_point() {
    open_boxes(box_json("f", "flonum", "20, 40, 90, 22"));
    send("f", "1.5");
    drag(widget("f"), {80, 15}, {80, 11});
    QCOMPARE(value("f"), "1.52");
    drag(widget("f"), {14, 15}, {14, 11});
    QCOMPARE(value("f"), "3.52");
}

void BoxesTest::text_is_entered_with_return() {
    open_boxes(box_json("t", "textedit", "20, 20, 120, 22", "\"text\": \"old\", \"keymode\": 1"));
    auto *field = widget("t")->findChild<QPlainTextEdit *>();
    QCOMPARE(field->toPlainText(), "old");
    field->selectAll();
    QTest::keyClicks(field, "new text");
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(take_outputs(), QStringList("t:0 text new text"));
    QCOMPARE(value("t"), "new text");
}

void BoxesTest::text_of_lines_is_entered_when_it_is_left() {
    open_boxes(box_json("t", "textedit", "20, 20, 120, 80"));
    auto *field = widget("t")->findChild<QPlainTextEdit *>();
    field->setFocus();
    QTest::keyClicks(field, "one");
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClicks(field, "two");
    QCOMPARE(take_outputs(), QStringList());
    QFocusEvent leave(QEvent::FocusOut);
    QCoreApplication::sendEvent(field, &leave);
    QCOMPARE(take_outputs(), QStringList("t:0 text one two"));
    QCOMPARE(value("t"), "one\ntwo");
}

void BoxesTest::message_does_not_disturb_typing() {
    PatcherWindow *window = open_boxes(box_json("t", "textedit", "20, 20, 120, 22", "\"keymode\": 1"));
    window->activateWindow();
    auto *field = widget("t")->findChild<QPlainTextEdit *>();
    field->setFocus();
    QTRY_VERIFY(field->hasFocus());
    QTest::keyClicks(field, "half a");
    send("t", "set something else");
    QCOMPARE(field->toPlainText(), "half a");
}

void BoxesTest::assistance_shows_on_hover() {
    PatcherWindow *window = open_boxes(box_json("m", "message", "20, 20, 80, 22", "\"hint\": \"a hint\""));
    const QPoint inlet = (widget("m")->inlet_point(1) - widget("m")->pos()).toPoint();
    QTest::mouseMove(widget("m"), inlet);
    QTRY_COMPARE(window->statusBar()->currentMessage(), "Set the message");
    const QPoint outlet = (widget("m")->outlet_point(0) - widget("m")->pos()).toPoint();
    QTest::mouseMove(widget("m"), outlet);
    QTRY_COMPARE(window->statusBar()->currentMessage(), "The message");
    QTest::mouseMove(widget("m"), QPoint(45, 15));
    QTRY_COMPARE(window->statusBar()->currentMessage(), "");
    QCOMPARE(widget("m")->accessibleDescription(), "a hint");
}

void BoxesTest::tabulator_goes_from_box_to_box() {
    PatcherWindow *window = open_boxes(box_json("low", "button", "20, 100, 24, 24") + "," +
                                       box_json("list", "vrk.tessaroll", "20, 40, 100, 50") + "," +
                                       box_json("top", "message", "20, 10, 60, 22"));
    window->activateWindow();
    widget("top")->setFocus();
    QTRY_VERIFY(widget("top")->hasFocus());
    QTest::keyClick(widget("top"), Qt::Key_Tab);
    QVERIFY(list()->hasFocus());
    QTest::keyClick(list(), Qt::Key_Tab);
    QVERIFY(widget("low")->hasFocus());
}

void BoxesTest::boxes_have_roles_and_names() {
    open_boxes(box_json("m", "message", "20, 20, 80, 22", "\"text\": \"go\"") + "," +
               box_json("t", "toggle", "120, 20, 24, 24") + "," + box_json("n", "number", "160, 20, 60, 22") + "," +
               box_json("c", "comment", "20, 60, 100, 20", "\"text\": \"read me\"") + "," +
               box_json("list", "vrk.tessaroll", "20, 90, 100, 60"));
    struct Expected {
        const char *name;
        QAccessible::Role role;
        const char *text;
    };
    for (const Expected &each :
         {Expected{"m", QAccessible::Button, "go"}, Expected{"t", QAccessible::CheckBox, "toggle"},
          Expected{"n", QAccessible::SpinBox, "0"}, Expected{"c", QAccessible::StaticText, "read me"}}) {
        QAccessibleInterface *found = QAccessible::queryAccessibleInterface(widget(each.name));
        QVERIFY(found);
        QCOMPARE(found->role(), each.role);
        QCOMPARE(found->text(QAccessible::Name), each.text);
    }
    QAccessible::queryAccessibleInterface(widget("t"))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    QVERIFY(QAccessible::queryAccessibleInterface(widget("t"))->state().checked);
    send("list", "append \"the first\", append second");
    QAccessibleTableInterface *rows = QAccessible::queryAccessibleInterface(list())->tableInterface();
    QVERIFY(rows);
    QCOMPARE(rows->rowCount(), 2);
    QCOMPARE(rows->cellAt(0, 0)->text(QAccessible::Name), "the first");
}

void BoxesTest::box_moves_with_its_rectangle() {
    open_boxes(box_json("list", "vrk.tessaroll", "20, 20, 80, 60"));
    const QRect before = widget("list")->geometry();
    send("list", "patching_rect 50. 20. 100. 60.");
    QCOMPARE(widget("list")->geometry(), before.translated(30, 0).adjusted(0, 0, 20, 0));
}

void BoxesTest::boxes_come_and_go() {
    PatcherWindow *window = open_boxes(box_json("m", "message", "20, 20, 80, 22"));
    QCOMPARE(window->current_canvas()->findChildren<BoxWidget *>().size(), 1);
    const OwnedDictionary dictionary = empty_dictionary();
    t_object *made = new_box(window->patcher(), gensym("toggle"), dictionary.get());
    connect_boxes(box("m"), 0, made);
    settle();
    QVERIFY(window->current_canvas()->widget_of(made));
    QVERIFY(window->current_canvas()->widget_of(made)->width() > 10); // it was given no size
    free_box(made);
    QVERIFY(!window->current_canvas()->widget_of(made));
    settle();
}

void BoxesTest::hidden_boxes_do_not_show() {
    open_boxes(box_json("m", "message", "20, 20, 80, 22", "\"hidden\": 1") + "," +
               box_json("n", "number", "20, 60, 80, 22"));
    QVERIFY(!widget("m")->isVisible());
    QVERIFY(widget("n")->isVisible());
}

void BoxesTest::metro_ticks() {
    open_boxes(box_json("m", "newobj", "20, 20, 80, 22", "\"text\": \"metro 5\"") + "," +
                   box_json("b", "button", "20, 60, 24, 24"),
               cord_json("m", 0, "b", 0));
    send("m", "1");
    QTRY_VERIFY(outputs().count("b:0 bang") > 3);
    send("m", "0");
    settle();
    take_outputs();
    QVERIFY(!next_clock_due());
}

int run_boxes_tests(int argc, char **argv) {
    BoxesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "boxes-test.moc"
