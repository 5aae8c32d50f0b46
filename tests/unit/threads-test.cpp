// Both threads at work on one box: the scheduler thread navigates, outputs and clears while the main thread edits,
// loads, paints and saves. Run under ThreadSanitizer it shows that the critical region is held where it has to be.
#include "ext.h"
#include "support/host-test.h"

using namespace maxhost;

namespace {

class ThreadsTest : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        std::string reason;
        ASSERT_TRUE(load_plugin(VRK_PLUGIN, reason)) << reason;
        patcher = new_patcher();
        const OwnedDictionary dictionary = empty_dictionary();
        t_atom embed;
        atom_setlong(&embed, 1);
        dictionary_appendatoms(dictionary.get(), gensym("embed"), 1, &embed);
        list = new_box(patcher, gensym("vrk.tessaroll"), dictionary.get());
        ASSERT_NE(list, nullptr);
    }
    void TearDown() override {
        free_patcher(patcher);
        HostTest::TearDown();
    }

    void send(const std::string &text) { send_message(list, parse_atoms(text)); }
    void schedule(const std::string &text) { send_on_scheduler(list, parse_atoms(text)); }

    t_object *patcher = nullptr;
    t_object *list = nullptr;
};

std::string resource_file(long count) {
    std::string text = "<?xml version=\"1.0\"?>\n<resourcefile><resource>";
    for (long i = 0; i < count; ++i)
        text += "<string number=\"" + std::to_string(i) + "\">item " + std::to_string(i) + "</string>";
    return text + "</resource></resourcefile>\n";
}

} // namespace

TEST_F(ThreadsTest, NavigatingWhileEditing) {
    const char *const moves[] = {"next", "previous", "home", "end", "int 5", "set 3", "bang", "length"};
    for (long i = 0; i < 1500; ++i) {
        schedule(moves[i % std::size(moves)]);
        send("append item" + std::to_string(i));
        if (i % 3 == 0)
            send("insert 2 inserted");
        if (i % 5 == 0)
            send("delete 1");
        drain_queue();
    }
    wait_until_delivered();
    drain_queue();
    ViewState state{};
    ASSERT_TRUE(data_view_state(list, state));
    // 1500 appended and 500 inserted, and 300 deletes of which the first emptied the list of one or two
    take_lines();
    send("length");
    EXPECT_EQ(take_lines(), (Lines{"obj-1:1 int " + std::to_string(state.rows)}));
    EXPECT_EQ(state.rows, 1500 + 500 - 300);
}

TEST_F(ThreadsTest, ClearingAndDumpingWhileLoadingAndPainting) {
    write_file("a.xml", resource_file(200));
    write_file("b.xml", resource_file(100));
    for (long i = 0; i < 60; ++i) {
        send(i % 2 ? "read a.xml" : "read b.xml");
        schedule("dump");
        schedule(i % 4 ? "next" : "clear");
        drain_queue();
        for (long row = 1; row <= 20; ++row)
            painted_row(list, row);
        saved_box(list);
        click_row(list, 3);
    }
    wait_until_delivered();
    send("read a.xml");
    drain_queue();
    ViewState state{};
    ASSERT_TRUE(data_view_state(list, state));
    EXPECT_EQ(state.rows, 200);
    EXPECT_EQ(state.selected, 1);
}
