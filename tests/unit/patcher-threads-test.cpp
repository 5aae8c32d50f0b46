// Both threads at work in one patcher: the scheduler thread sends messages through its boxes while the main thread
// clicks, edits, saves, and makes and frees boxes and cords. Run under ThreadSanitizer.
#include "ext.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

class PatcherThreadsTest : public PatchTest {
  protected:
    void SetUp() override {
        PatchTest::SetUp();
        std::string reason;
        ASSERT_TRUE(load_plugin(VRK_PLUGIN, reason)) << reason;
    }

    void send(const std::string &name, const std::string &messages) {
        for (const TypedMessage &message : parse_messages(messages))
            send_message(named(name), message.atoms);
    }
    void schedule(const std::string &name, const std::string &messages) {
        for (const TypedMessage &message : parse_messages(messages))
            send_on_scheduler(named(name), message.atoms);
    }

    // Waits for the scheduler thread and runs what it has queued.
    void settle() {
        wait_until_delivered();
        drain_queue();
        take_lines();
    }

    long rows(const std::string &name) {
        ViewState state{};
        EXPECT_TRUE(data_view_state(named(name), state));
        return state.rows;
    }
};

// A message for each kind of box, and what else it understands.
struct BoxAndMessages {
    const char *name;
    const char *typed;
    const char *messages;
};
constexpr BoxAndMessages all_kinds[] = {
    {"button", "button", "bang, 1"},
    {"comment", "comment", "set a b"},
    {"counter", "counter 1 9", "bang, set 3, jam 2, min 1, max 8, updown, inc, 5"},
    {"float", "flonum @minimum 0", "2.5, set 1, bang"},
    {"list", "vrk.tessaroll @embed 1", "append a, next, bang, length, cellh 9, frame 2, selectcolor 1. 0. 0. 1."},
    {"message", "message @text \"a $1, b\"", "5, set x $1, append y, prepend z, setargs 7, bang"},
    {"metro", "metro 20", "1, 0, bang, stop"},
    {"number", "number", "5, set 1, bang"},
    {"pack", "pack 1 a 2.", "3 b 4., set 1, bang"},
    {"prepend", "prepend set", "a b, set append"},
    {"append", "append end", "a b, set x"},
    {"print", "print it", "1 2"},
    {"receive", "r here", "1"},
    {"route", "route a 1", "a 5, 1 2, b"},
    {"select", "sel a 1", "a, 1, b"},
    {"send", "s here", "a 1, bang"},
    {"text", "textfield", "set a b, append c, outputmode 1, bang, clear, typed"},
    {"toggle", "toggle", "bang, set 1, 0"},
    {"trigger", "t i b l s f", "a, 5"},
};

// Places and fonts are set by messages, too.
constexpr const char *attributes = "patching_rect 1. 2. 30. 40.";

} // namespace

TEST_F(PatcherThreadsTest, EveryKindOfBoxTakesMessagesOnBothThreads) {
    for (const BoxAndMessages &kind : all_kinds)
        box(kind.name, kind.typed);
    for (int round = 0; round < 20; ++round) {
        for (const BoxAndMessages &kind : all_kinds) {
            schedule(kind.name, kind.messages);
            schedule(kind.name, attributes);
            send(kind.name, kind.messages);
            send(kind.name, attributes);
            click_box(named(kind.name));
            saved_box(named(kind.name));
            assistance(named(kind.name), true, 0);
        }
        drain_queue();
        run_next_clock(clock_time() + 5);
    }
    settle();
}

TEST_F(PatcherThreadsTest, BoxesAndCordsComeAndGoWhileMessagesFlow) {
    box("start", "t l");
    box("list", "vrk.tessaroll @embed 1");
    for (int i = 0; i < 200; ++i) {
        schedule("start", "item" + std::to_string(i));
        box("passing", i % 2 ? "message append $1" : "prepend append");
        cord("start", 0, "passing");
        cord("passing", 0, "list");
        schedule("start", "item" + std::to_string(i));
        if (i % 3 == 0)
            wait_until_delivered();
        free_box(named("passing"));
        drain_queue();
    }
    settle();
    EXPECT_GE(rows("list"), 200 / 3);
}

TEST_F(PatcherThreadsTest, ReceiversComeAndGoWhileSomebodySends) {
    box("send", "s here");
    for (int i = 0; i < 200; ++i) {
        schedule("send", "append a");
        box("receive", "r here");
        box("list", "vrk.tessaroll");
        cord("receive", 0, "list");
        schedule("send", "append b");
        send_to_receiver(gensym("here"), parse_atoms("next"));
        free_box(named("receive"));
        free_box(named("list"));
    }
    settle();
}

TEST_F(PatcherThreadsTest, PatchersOpenWhileSomebodySends) {
    const std::string file = write_file("receiving.maxpat", file_of(R"(
        {"box": {"id": "r", "maxclass": "newobj", "text": "r here", "numinlets": 0, "numoutlets": 1}},
        {"box": {"id": "list", "maxclass": "vrk.tessaroll", "numinlets": 1, "numoutlets": 3}})",
                                                                    R"(
        {"patchline": {"source": ["r", 0], "destination": ["list", 0]}})"));
    box("send", "s here");
    std::string reason;
    for (int i = 0; i < 100; ++i) {
        schedule("send", "append a, next, bang");
        t_object *other = open_patcher(file, reason);
        ASSERT_NE(other, nullptr) << reason;
        schedule("send", "append b");
        free_patcher(other);
    }
    settle();
}

TEST_F(PatcherThreadsTest, PatchersAreSavedWhileTheyRun) {
    open(file_of(R"({"box": {"id": "list", "maxclass": "vrk.tessaroll", "numinlets": 1, "numoutlets": 3, "embed": 1}},
        {"box": {"id": "m", "maxclass": "message", "text": "append $1"}},
        {"box": {"id": "p", "maxclass": "newobj", "text": "p", "patcher": {"boxes": [
            {"box": {"id": "in", "maxclass": "inlet"}}, {"box": {"id": "out", "maxclass": "outlet"}}],
            "lines": [{"patchline": {"source": ["in", 0], "destination": ["out", 0]}}]}}})",
                 R"({"patchline": {"source": ["m", 0], "destination": ["p", 0]}},
        {"patchline": {"source": ["p", 0], "destination": ["list", 0]}})"));
    for (int i = 0; i < 100; ++i) {
        schedule("m", "item" + std::to_string(i));
        schedule("m", "set append $1 " + std::to_string(i));
        saved_text();
        is_dirty(patcher);
        drain_queue();
    }
    settle();
    EXPECT_EQ(rows("list"), 100);
    EXPECT_EQ(saved_member("list", "restoreitems").size(), 100u);
}

TEST_F(PatcherThreadsTest, AMetroIsSetOnOneThreadAndBeatsOnTheOther) {
    box("metro", "metro 2");
    box("count", "counter");
    cord("metro", 0, "count");
    for (int i = 0; i < 300; ++i) {
        schedule("metro", i % 2 ? "1" : "stop");
        run_next_clock(clock_time() + 3);
    }
    wait_until_delivered();
    send("metro", "stop");
    take_lines();
    EXPECT_FALSE(run_next_clock(clock_time() + 1000));
    send("metro", "bang");
    EXPECT_TRUE(run_next_clock(clock_time() + 2));
}

TEST_F(PatcherThreadsTest, PatchersCloseWhileMessagesAreOnTheirWay) {
    for (int i = 0; i < 50; ++i) {
        box("metro", "metro 1");
        box("list", "vrk.tessaroll");
        box("m", "message append a, bang, dump");
        cord("metro", 0, "m");
        cord("m", 0, "list");
        schedule("metro", "1, 0, 1");
        schedule("m", "bang, bang");
        free_patcher(patcher);
        patcher = new_patcher();
    }
    settle();
}
