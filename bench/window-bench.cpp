// How long a list of 32767 rows takes to show another page, and to show one more row, in a window without a screen.
#include <algorithm>
#include <cstdio>
#include <vector>

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>

#include "listview.h"
#include "patcherwindow.h"
#include "script/program.h"
#include "session.h"

using namespace maxhost;

namespace {

constexpr long row_count = 32767;
constexpr double frame = 16; // milliseconds

// Counts how often a widget is painted, so that nothing counts as fast that did not happen.
class Paints : public QObject {
  public:
    explicit Paints(QWidget *watched) { watched->installEventFilter(this); }
    long count = 0;

  private:
    bool eventFilter(QObject *, QEvent *event) override {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

t_object *make_list(Session &session) {
    const OwnedDictionary dictionary = empty_dictionary();
    std::vector<t_atom> rect(4);
    for (size_t i = 0; i < rect.size(); ++i)
        atom_setfloat(&rect[i], std::vector<double>{20, 20, 320, 420}[i]);
    dictionary_appendatoms(dictionary.get(), gensym("patching_rect"), 4, rect.data());
    Document *document = session.open_untitled();
    t_object *list = new_box(document->patcher(), gensym("vrk.tessaroll"), dictionary.get());
    std::vector<t_atom> items(row_count);
    atom_setsym(items.data(), gensym("restoreitems"));
    for (size_t i = 1; i < items.size(); ++i)
        atom_setsym(&items[i], gensym(("Item number " + std::to_string(i) + " of a long list").c_str()));
    send_message(list, items);
    return list;
}

// Everything that comes of an event, down to what is painted.
void settle(Session &session) {
    while (!session.time().run()) {
    }
    session.bridge().deliver();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

template <typename Event> double time_of(Session &session, Event event) {
    QElapsedTimer timer;
    timer.start();
    event();
    settle(session);
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

bool print_times(const char *what, std::vector<double> times, const Paints &paints) {
    std::sort(times.begin(), times.end());
    const double median = times[times.size() / 2], most = times.back();
    const bool is_good = most < frame && paints.count >= static_cast<long>(times.size());
    std::printf("| %s | %zu | %.2f ms | %.2f ms | %s |\n", what, times.size(), median, most, is_good ? "yes" : "no");
    return is_good;
}

bool scroll_through(Session &session, ListView &view) {
    const Paints paints(view.viewport());
    std::vector<double> times;
    for (Qt::Key key : {Qt::Key_PageDown, Qt::Key_PageUp}) {
        const int end = key == Qt::Key_PageDown ? view.model()->rowCount() - 1 : 0;
        while (view.currentIndex().row() != end)
            times.push_back(time_of(session, [&] {
                QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
                QCoreApplication::sendEvent(&view, &press);
            }));
    }
    return print_times("another page of 32767 rows, end to end and back", times, paints);
}

bool append_rows(Session &session, ListView &view, t_object *list) {
    const Paints paints(view.viewport());
    std::vector<double> times;
    for (int i = 0; i < 50; ++i) {
        send_message(list, parse_atoms("delete 1"));
        settle(session);
        times.push_back(time_of(session, [&] { send_message(list, parse_atoms("append \"One more\"")); }));
    }
    return print_times("one row more to 32766 rows", times, paints);
}

bool run(Session &session) {
    t_object *list = make_list(session);
    settle(session);
    auto *view = session.documents().front()->windows().constFirst()->findChild<ListView *>();
    std::printf("| shown in a window | times | median | longest | within a frame of %.0f ms |\n", frame);
    std::printf("|---|---:|---:|---:|---|\n");
    const bool scrolls = scroll_through(session, *view);
    return append_rows(session, *view, list) && scrolls;
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication qt(argc, argv);
    std::string reason;
    if (!load_plugins({}, reason)) {
        std::fprintf(stderr, "%s\n", reason.c_str());
        return 1;
    }
    Session session;
    start_host(session.front_end());
    const bool is_good = run(session);
    session.close_all();
    stop_host();
    return is_good ? 0 : 1;
}
