// The scheduler thread sends every message that the box has, while the main thread edits, loads, saves, paints, frees
// and makes boxes. Run under ThreadSanitizer it shows that the critical region is held where it has to be.
#include "soak/soak-test.h"

using namespace maxhost;

namespace {

// What people's patches send often.
const std::vector<std::string> quick = {"bang",
                                        "next",
                                        "previous",
                                        "home",
                                        "end",
                                        "int 7",
                                        "2.5",
                                        "set 3",
                                        "length",
                                        "append s",
                                        "insert 2 t",
                                        "insert 900 u",
                                        "replace 1 v",
                                        "replace 900 w",
                                        "delete 1",
                                        "delete 900",
                                        "erase",
                                        "restore 9 14",
                                        "frame 2",
                                        "cellh 12",
                                        "cellv 90",
                                        "embed 1",
                                        "restoreitem x",
                                        "append s2",
                                        "next",
                                        "done",
                                        "fontsize 11.",
                                        "fontname Times",
                                        "append s3",
                                        "root resourcefile",
                                        "selectcolor 0.1 0.2 0.3 0.4",
                                        "xmlpath resource string"};

// What takes the disk or the whole list.
const std::vector<std::string> slow = {"read a.xml",         "dump",      "write out.xml", "clear",
                                       "restoreitems p q r", "read b.xml"};

std::string message(long turn) {
    const auto at = static_cast<size_t>(turn);
    return turn % 100 == 99 ? slow[at / 100 % slow.size()] : quick[at * 7 % quick.size()];
}

std::vector<std::string> texts(long count) {
    std::vector<std::string> all;
    for (long i = 0; i < count; ++i)
        all.push_back("item " + std::to_string(i));
    return all;
}

class TwoThreads : public SoakTest {
  protected:
    void SetUp() override {
        SoakTest::SetUp();
        write_file("a.xml", resource_file(texts(60)));
        write_file("b.xml", resource_file(texts(20)));
    }
};

// What the main thread does besides draining.
void work_on(t_object *box, long turn) {
    send(box, message(turn * 3 + 1));
    if (turn % 4 == 0)
        painted_row(box, turn % 9);
    if (turn % 16 == 0)
        click_row(box, turn % 7);
    if (turn % 64 == 0)
        saved_box(box);
}

} // namespace

TEST_F(TwoThreads, SendEveryMessageWhileBoxesComeAndGo) {
    const long turns = turns_or(20000);
    t_object *box = new_list();
    for (long turn = 0; turn < turns; ++turn) {
        schedule(box, message(turn));
        if (turn % 3 == 0)
            work_on(box, turn / 3);
        if (turn % 2 == 0)
            drain_queue();
        if (turn % 500 == 499) {
            ASSERT_NO_FATAL_FAILURE(expect_agreement(box)) << turn;
        }
        if (turn % 1700 == 1699) { // with messages for it still under way
            free_box(box);
            box = new_list();
        }
    }
    expect_agreement(box);
}

TEST_F(TwoThreads, LoseNoAppend) {
    const long turns = turns_or(4000);
    constexpr long most = 1000;
    t_object *box = new_list();
    for (long done = 0; done < turns; done += most) {
        for (long i = 0; i < most; i += 2) {
            schedule(box, "append scheduled");
            send(box, "append sent");
            if (i % 6 == 0)
                drain_queue();
        }
        ASSERT_NO_FATAL_FAILURE(expect_agreement(box));
        ViewState state{};
        ASSERT_TRUE(data_view_state(box, state));
        ASSERT_EQ(state.rows, most);
        send(box, "clear");
        drain_queue();
    }
}
