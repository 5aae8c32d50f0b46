// The list in its window: rows, mouse, keys, scrolling, painting.
#include "window-test.h"

#include <QScrollBar>
#include <QWheelEvent>

using namespace maxhost;

namespace {

const QString list_box = box_json("list", "vrk.tessaroll", "20, 20, 200, 150");

QString appends(int count) {
    QString message;
    for (int i = 1; i <= count; ++i)
        message += QString("%1append \"item %2\"").arg(i > 1 ? ", " : "").arg(i);
    return message;
}

QPoint middle_of_row(const ListView &view, int row) { return view.visualRect(view.model()->index(row, 0)).center(); }

// Counts how often a widget is painted.
class Paints : public QObject {
  public:
    explicit Paints(QWidget *watched) { watched->installEventFilter(this); }
    int count = 0;

  private:
    bool eventFilter(QObject *, QEvent *event) override {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

// Counts the rows that are painted.
class CountingDelegate : public QStyledItemDelegate {
  public:
    mutable int painted = 0;

  private:
    void paint(QPainter *, const QStyleOptionViewItem &, const QModelIndex &) const override { ++painted; }
};

} // namespace

class ListTest : public WindowTest {
    Q_OBJECT

  private Q_SLOTS:
    void click_selects_and_sends();
    void click_beside_rows_does_nothing();
    void keys_move_the_selection();
    void return_sends_the_row_again();
    void wheel_scrolls();
    void selecting_by_message_scrolls();
    void appended_row_comes_into_view();
    void repainting_keeps_the_place();
    void clear_and_refill_is_one_repaint();
    void rows_out_of_sight_are_not_painted();
    void font_changes_at_once();
    void zoom_scales_rows();
    void cells_are_as_wide_as_their_column_data();
    void cells_are_as_wide_as_their_column();
    void scroll_bar_is_shown_though_all_rows_fit();
    void all_scripts_draw_data();
    void all_scripts_draw();
    void many_rows_scroll_to_the_end();
};

void ListTest::click_selects_and_sends() {
    open_boxes(list_box + "," + box_json("shown", "number", "20, 200, 60, 22"), cord_json("list", 0, "shown", 0));
    send("list", appends(5));
    take_outputs();
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, middle_of_row(*list(), 2));
    QCOMPARE(take_outputs(), QStringList({"list:2 item 3", "list:0 3", "shown:0 3"}));
    QCOMPARE(view().selected, 3);
    QCOMPARE(value("shown"), "3");
    settle();
    QCOMPARE(list()->currentIndex().row(), 2);
}

void ListTest::click_beside_rows_does_nothing() {
    open_boxes(list_box);
    send("list", appends(2));
    take_outputs();
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, QPoint(20, 120));
    QCOMPARE(take_outputs(), QStringList());
}

void ListTest::keys_move_the_selection() {
    open_boxes(list_box);
    send("list", appends(100));
    send("list", "set 1"); // which selects nothing
    const int page = list()->viewport()->height() / static_cast<int>(view().row_height);
    struct Step {
        Qt::Key key;
        long selected;
    };
    const Step steps[] = {{Qt::Key_Down, 1},           {Qt::Key_Down, 2},   {Qt::Key_PageDown, 2 + page},
                          {Qt::Key_End, 100},          {Qt::Key_Down, 100}, {Qt::Key_Up, 99},
                          {Qt::Key_PageUp, 99 - page}, {Qt::Key_Home, 1},   {Qt::Key_PageUp, 1}};
    for (const Step &step : steps) {
        QTest::keyClick(list(), step.key);
        settle();
        QCOMPARE(view().selected, step.selected);
        const QRect row = list()->visualRect(list()->currentIndex());
        QVERIFY(list()->viewport()->rect().contains(row));
    }
}

void ListTest::return_sends_the_row_again() {
    open_boxes(list_box);
    send("list", appends(3));
    send("list", "set 1");
    QTest::keyClick(list(), Qt::Key_Return); // nothing is selected yet
    take_outputs();
    QTest::keyClick(list(), Qt::Key_Down);
    take_outputs();
    QTest::keyClick(list(), Qt::Key_Return);
    QCOMPARE(take_outputs(), QStringList({"list:2 item 1", "list:0 1"}));
}

void ListTest::wheel_scrolls() {
    open_boxes(list_box);
    send("list", appends(100));
    send("list", "1");
    const QPointF at = list()->viewport()->rect().center();
    QWheelEvent down(at, list()->viewport()->mapToGlobal(at), {}, {0, -240}, Qt::NoButton, {}, Qt::NoScrollPhase,
                     false);
    QCoreApplication::sendEvent(list()->viewport(), &down);
    QVERIFY(list()->verticalScrollBar()->value() > 0);
    QCOMPARE(view().selected, 1);
}

void ListTest::selecting_by_message_scrolls() {
    open_boxes(list_box);
    send("list", appends(100));
    send("list", "90");
    QVERIFY(list()->viewport()->rect().contains(list()->visualRect(list()->model()->index(89, 0))));
    send("list", "home");
    send("list", "1");
    QCOMPARE(list()->verticalScrollBar()->value(), 0);
}

void ListTest::appended_row_comes_into_view() {
    open_boxes(list_box);
    send("list", appends(100));
    list()->verticalScrollBar()->setValue(400);
    send("list", "append more");
    QCOMPARE(list()->model()->rowCount(), 101);
    QVERIFY(list()->viewport()->rect().contains(list()->visualRect(list()->model()->index(100, 0))));
}

void ListTest::repainting_keeps_the_place() {
    open_boxes(list_box);
    send("list", appends(100));
    send("list", "set 1");
    list()->verticalScrollBar()->setValue(400);
    send("list", "erase, set 2");
    QCOMPARE(list()->verticalScrollBar()->value(), 400);
}

void ListTest::clear_and_refill_is_one_repaint() {
    open_boxes(list_box);
    send("list", appends(50));
    QTRY_VERIFY(list()->isVisible());
    QCoreApplication::processEvents();
    Paints paints(list()->viewport());
    send_message(box("list"), parse_atoms("clear"));
    for (int i = 0; i < 50; ++i)
        send_message(box("list"), parse_atoms("append again"));
    drain_queue();
    QCOMPARE(paints.count, 0);
    QTRY_COMPARE(list()->model()->rowCount(), 50);
    QTRY_VERIFY(paints.count > 0);
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, 1);
}

void ListTest::rows_out_of_sight_are_not_painted() {
    open_boxes(list_box);
    send("list", appends(500));
    CountingDelegate delegate;
    list()->setItemDelegate(&delegate);
    list()->viewport()->grab();
    QVERIFY(delegate.painted > 5);
    QVERIFY(delegate.painted <= list()->viewport()->height() / 14 + 2);
}

void ListTest::font_changes_at_once() {
    open_boxes(list_box);
    send("list", appends(3));
    QCOMPARE(list()->rowHeight(0), 14);
    send("list", "fontsize 20.");
    QCOMPARE(list()->rowHeight(0), 24);
    const DrawList drawn = painted_row(box("list"), 1);
    QCOMPARE(drawn.front().font_size, 20.);
}

void ListTest::zoom_scales_rows() {
    PatcherWindow *window = open_boxes(list_box);
    send("list", appends(3));
    for (Canvas *canvas : window->canvases())
        canvas->set_zoom(2);
    QCOMPARE(list()->rowHeight(0), 28);
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, middle_of_row(*list(), 1));
    QCOMPARE(view().selected, 2);
}

void ListTest::cells_are_as_wide_as_their_column_data() {
    QTest::addColumn<QString>("message");
    QTest::addColumn<double>("zoom");
    QTest::addColumn<int>("shown"); // pixels of the column
    QTest::newRow("as it is made") << "frame 1" << 1.0 << 104;
    QTest::newRow("in a wider box") << "patching_rect 20 20 320 60" << 1.0 << 104;
    QTest::newRow("in a narrower box") << "patching_rect 20 20 80 60" << 1.0 << 78 - QScrollBar().sizeHint().width();
    QTest::newRow("twice as large") << "frame 1" << 2.0 << 208;
}

// The current row is marked over the whole of its cell, and what is drawn, told and shown is of one width.
void ListTest::cells_are_as_wide_as_their_column() {
    QFETCH(QString, message);
    QFETCH(double, zoom);
    QFETCH(int, shown);
    PatcherWindow *window = open_boxes(box_json("list", "vrk.tessaroll", "20, 20, 120, 60"));
    send("list", "selectcolor 1. 0. 0. 1., " + appends(3) + ", " + message);
    send("list", "set 2");
    window->current_canvas()->set_zoom(zoom);
    QCOMPARE(view().column_width, 104);
    QCOMPARE(painted_row(box("list"), 2).back().rect.width, 104.);
    QCOMPARE(list()->visualRect(list()->model()->index(1, 0)).width(), shown);
    const QImage picture = list()->viewport()->grab().toImage();
    const int second = qRound(20 * zoom);
    for (int x = 0; x < picture.width(); ++x)
        QCOMPARE(picture.pixelColor(x, second), x < shown ? QColor(Qt::red) : QColor(Qt::white));
    QCOMPARE(picture.pixelColor(shown - 1, 5), QColor(Qt::white)); // the first row
}

void ListTest::scroll_bar_is_shown_though_all_rows_fit() {
    open_boxes(list_box);
    QVERIFY(list()->verticalScrollBar()->isVisible());
    send("list", appends(100));
    QVERIFY(list()->verticalScrollBar()->isVisible());
    QVERIFY(!list()->horizontalScrollBar()->isVisible());
}

void ListTest::all_scripts_draw_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("hebrew") << QString::fromUtf8("שלום עולם");
    QTest::newRow("arabic") << QString::fromUtf8("مرحبا بالعالم");
    QTest::newRow("chinese") << QString::fromUtf8("你好，世界");
}

// Letters, not the boxes of missing glyphs: different texts look different.
void ListTest::all_scripts_draw() {
    QFETCH(QString, text);
    open_boxes(list_box);
    send("list", "append \"" + text + "\"");
    const QImage one = list()->viewport()->grab(QRect(0, 0, 180, 14)).toImage();
    std::reverse(text.begin(), text.end());
    send("list", "replace 1 \"" + text + "\"");
    const QImage other = list()->viewport()->grab(QRect(0, 0, 180, 14)).toImage();
    QVERIFY(one != other);
    QCOMPARE(list()->model()->index(0, 0).data().toString(), text);
}

void ListTest::many_rows_scroll_to_the_end() {
    open_boxes(list_box);
    QFile file(path_of("many.xml"));
    QVERIFY(file.open(QFile::WriteOnly));
    file.write("<?xml version=\"1.0\"?><resourcefile><resource>");
    for (int i = 0; i < 32767; ++i)
        file.write(QString("<string number=\"%1\">item %1</string>").arg(i).toUtf8());
    file.write("</resource></resourcefile>");
    file.close();
    send("list", "xmlpath resource string, read many.xml");
    QCOMPARE(list()->model()->rowCount(), 32767);
    QTest::keyClick(list(), Qt::Key_End);
    settle();
    QCOMPARE(view().selected, 32767);
    QVERIFY(list()->viewport()->rect().contains(list()->visualRect(list()->model()->index(32766, 0))));
}

int run_list_tests(int argc, char **argv) {
    ListTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "list-test.moc"
