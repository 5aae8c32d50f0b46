// Messages that grow: how long they may get, and where growing ends.
#include <numeric>

#include "ext.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

std::string words(size_t count, const std::string &word = "abcdefgh") {
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += " " + word;
    return text;
}

size_t bytes_in(const Lines &lines) {
    return std::accumulate(lines.begin(), lines.end(), size_t{0}, [](size_t n, auto &line) { return n + line.size(); });
}

class LongMessagesTest : public PatchTest {
  protected:
    // The console's lines among those that a message causes; what boxes send is only counted.
    Lines told(const std::string &name, const std::string &messages) {
        Lines all = sent(name, messages);
        bytes_sent = bytes_in(all);
        std::erase_if(all, [](const std::string &line) { return !line.starts_with("error"); });
        return all;
    }

    size_t bytes_sent = 0;
};

const Lines long_circle{"error: p: stack overflow: long messages go round in a circle"};

} // namespace

TEST_F(LongMessagesTest, A32767AtomsMayLeaveABox) {
    box("p", "prepend x 1");
    EXPECT_EQ(told("p", words(32766, "7")), no_lines);
    EXPECT_GT(bytes_sent, 2 * 32766u);
    EXPECT_EQ(told("p", words(32767, "7")), (Lines{"error: p: message too long: more than 32767 atoms"}));
    EXPECT_LT(bytes_sent, 100u);
}

TEST_F(LongMessagesTest, NothingIsSentAfterAMessageThatIsTooLongInTheSameEvent) {
    box("t", "trigger b l b");
    box("p", "prepend x 1");
    cord("t", 1, "p");
    const Lines all = sent("t", words(32767, "7"));
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0], "t:2 bang");
    EXPECT_EQ(all[2], "error: p: message too long: more than 32767 atoms");
    EXPECT_EQ(sent("p", "y"), (Lines{"p:0 x 1 y"}));
}

TEST_F(LongMessagesTest, AMessageThatGrowsInACircleIsEndedOnceForEachEvent) {
    box("p", "prepend" + words(200));
    cord("p", 0, "p");
    for (int event = 0; event < 2; ++event) {
        EXPECT_EQ(told("p", "bang"), long_circle);
        EXPECT_LT(bytes_sent, 2'500'000u);
    }
}

TEST_F(LongMessagesTest, ALongMessageThatGoesRoundIsEndedThoughItDoesNotGrow) {
    box("p", "route x");
    cord("p", 1, "p");
    EXPECT_EQ(told("p", words(30000)), long_circle);
    EXPECT_LT(bytes_sent, 3'000'000u);
}

TEST_F(LongMessagesTest, ALongSelectorCountsAsWell) {
    box("p", "message " + std::string(100'000, 'x'));
    cord("p", 0, "p");
    EXPECT_EQ(told("p", "bang"), long_circle);
    EXPECT_LT(bytes_sent, 3'000'000u);
}

TEST_F(LongMessagesTest, ShortMessagesMayComeBackAsOftenAsAnyMessage) {
    for (int level = 0; level <= 10; ++level) { // 1024 bangs
        box("t" + std::to_string(level), "trigger b b");
        for (long outlet = 0; level > 0 && outlet < 2; ++outlet)
            cord("t" + std::to_string(level - 1), outlet, "t" + std::to_string(level));
    }
    box("count", "counter 0 149"); // goes round until it is 0 again
    box("end", "route 0");
    box("again", "trigger b");
    cord("t10", 0, "count");
    cord("count", 0, "end");
    cord("end", 1, "again");
    cord("again", 0, "count");
    EXPECT_EQ(told("t0", "bang"), no_lines);
    EXPECT_GT(bytes_sent, 4'000'000u);
}

TEST_F(LongMessagesTest, AClockThatBeginsACircleIsStopped) {
    box("m", "metro 10");
    box("p", "prepend" + words(200));
    cord("m", 0, "p");
    cord("p", 0, "p");
    sent("m", "0");
    EXPECT_EQ(told("m", "1"), long_circle);
    take_lines();
    for (int tick = 0; tick < 3; ++tick)
        run_next_clock(clock_time() + 10);
    Lines told_later = take_lines();
    std::erase_if(told_later, [](const std::string &line) { return !line.starts_with("error"); });
    EXPECT_EQ(told_later, (Lines{long_circle[0], "error: m: its clock is stopped"}));
}

TEST_F(LongMessagesTest, ATextHasAtMostAMillionBytes) {
    for (const char *typed : {"message", "textfield"}) {
        t_object *made = box("b", typed);
        EXPECT_EQ(sent("b", "set " + std::string(999'998, 'x')), no_lines);
        EXPECT_EQ(sent("b", "append y"), no_lines);
        EXPECT_EQ(sent("b", "append y"), (Lines{"error: b: text too long: more than 32767 words or 1000000 bytes"}));
        free_box(made);
    }
}

TEST_F(LongMessagesTest, AMessageThatGrowsByAWordComesToTheDeepestNesting) {
    box("p", "prepend abcdefgh");
    cord("p", 0, "p");
    EXPECT_EQ(told("p", "bang"), (Lines{"error: p: stack overflow: messages go round in a circle"}));
}

TEST_F(LongMessagesTest, ALongMessageMayPassThroughManyBoxes) {
    box("a0", "prepend x");
    for (int i = 1; i <= 100; ++i) {
        box("a" + std::to_string(i), "prepend x");
        cord("a" + std::to_string(i - 1), 0, "a" + std::to_string(i));
    }
    EXPECT_EQ(told("a0", words(3000)), no_lines);
    EXPECT_GT(bytes_sent, 2'500'000u);
}

TEST_F(LongMessagesTest, AWordThatGrowsInACircleIsEnded) {
    box("p", "message $1" + std::string(1000, 'x'));
    cord("p", 0, "p");
    EXPECT_EQ(told("p", "a"), (Lines{"error: p: word too long: more than 32767 bytes"}));
    EXPECT_LT(bytes_sent, 1'000'000u);
}

TEST_F(LongMessagesTest, AWordIsPutTogetherUpTo32767Bytes) {
    box("p", "message @text \"$1yy, second\"");
    EXPECT_EQ(told("p", std::string(32765, 'x')), no_lines);
    EXPECT_EQ(sent("p", std::string(32766, 'x')), (Lines{"error: p: word too long: more than 32767 bytes"}));
    box("q", "message @text \"; $1yy bang\"");
    EXPECT_EQ(sent("q", std::string(32766, 'x')), (Lines{"error: q: word too long: more than 32767 bytes"}));
}

TEST_F(LongMessagesTest, AMessageByNameIsNoLongerThanOneByCord) {
    open(file_of(R"({"box": {"id": "m", "maxclass": "message", "text": "; r 1)" + words(32767, "7") + R"("}},
                    {"box": {"id": "r", "maxclass": "newobj", "text": "receive r"}})"));
    EXPECT_EQ(sent("m", "bang"), (Lines{"error: m: message too long: more than 32767 atoms"}));
}

TEST_F(LongMessagesTest, ATextOfMoreWordsThanAMessageMayHaveStaysAsItWas) {
    for (const char *typed : {"message @text kept", "textfield @text kept"}) {
        t_object *made = box("b", typed);
        const Lines refused{"error: b: text too long: more than 32767 words or 1000000 bytes"};
        EXPECT_EQ(sent("b", "append" + words(32766, "7")), no_lines);
        EXPECT_EQ(sent("b", "append 8"), refused);
        EXPECT_EQ(sent("b", "set kept"), no_lines);
        EXPECT_EQ(sent("b", "append" + words(32767, "7")), refused);
        EXPECT_EQ(print_atoms(shown_value(made)), "kept");
        free_box(made);
    }
}

TEST_F(LongMessagesTest, ATextFieldDoesNotSendATextThatItRefuses) {
    box("b", "textfield @text kept");
    EXPECT_EQ(sent("b", words(32768, "7")), (Lines{"error: b: text too long: more than 32767 words or 1000000 bytes"}));
    const t_atom many = parse_atoms("\"" + words(32768, "7") + "\"")[0];
    EXPECT_TRUE(enter_value(named("b"), {&many, 1}));
    EXPECT_EQ(take_lines(), (Lines{"error: b: text too long: more than 32767 words or 1000000 bytes"}));
    EXPECT_EQ(sent("b", "bang"), (Lines{"b:0 text kept"}));
}

TEST_F(LongMessagesTest, ATextThatGrowsInACircleIsRefusedOnceForEachEvent) {
    box("p", "prepend append" + words(300, "7"));
    box("b", "textfield");
    cord("p", 0, "b");
    cord("p", 0, "p");
    for (int event = 0; event < 2; ++event)
        EXPECT_EQ(told("p", "x"), (Lines{"error: b: text too long: more than 32767 words or 1000000 bytes"}));
}

TEST_F(LongMessagesTest, AMessageBoxTakesNoLongerTextIntoItsRightInletOrItsFront) {
    box("b", "message kept");
    box("s", "route x");
    cord("s", 1, "b", 1);
    const Lines all = sent("s", words(32767, "7"));
    EXPECT_EQ(all.size(), 1u);
    EXPECT_EQ(sent("b", "prepend 8"), (Lines{"error: b: text too long: more than 32767 words or 1000000 bytes"}));
}
