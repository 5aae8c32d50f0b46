// The boxes that the host brings along: what comes in, what goes out.
#include <algorithm>

#include "ext.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

using BoxesTest = PatchTest;

} // namespace

// ---- message

TEST_F(BoxesTest, MessageSendsItsParts) {
    box("m", "message @text \"one, 2 3, 4., \\\"5\\\" x\"");
    EXPECT_EQ(sent("m", "bang"), (Lines{"m:0 one", "m:0 list 2 3", "m:0 float 4.", "m:0 5 x"}));
    EXPECT_TRUE(click_box(named("m")));
    EXPECT_EQ(take_lines().size(), 4u);
}

TEST_F(BoxesTest, MessageFillsInArguments) {
    box("m", "message @text \"$1-bis bis-$1 $2 \\\\$1 $0 $1\"");
    EXPECT_EQ(sent("m", "bang"), Lines{"m:0 0-bis bis-$1 0 $1 $0 0"});
    EXPECT_EQ(sent("m", "34"), Lines{"m:0 34-bis bis-$1 0 $1 $0 34"});
    EXPECT_EQ(sent("m", "a 2.5"), Lines{"m:0 a-bis bis-$1 2.5 $1 $0 a"});
    EXPECT_EQ(sent("m", "symbol \"b c\""), Lines{"m:0 b c-bis bis-$1 2.5 $1 $0 \"b c\""});
    EXPECT_EQ(sent("m", "setargs x y, bang"), Lines{"m:0 x-bis bis-$1 y $1 $0 x"});
    EXPECT_EQ(sent("m", "1 2 3 4 5 6 7 8 9 10 11"), Lines{"m:0 1-bis bis-$1 2 $1 $0 1"});
}

TEST_F(BoxesTest, MessageKeepsTheKindOfAnArgument) {
    box("m", "message @text $1");
    EXPECT_EQ(sent("m", "5, 5., foo, 1 2"), (Lines{"m:0 int 5", "m:0 float 5.", "m:0 foo", "m:0 int 1"}));
}

TEST_F(BoxesTest, MessageSendsToReceivers) {
    box("m", "message @text \"here; there a, b; $1 c; nobody d\"");
    box("r", "receive there");
    box("r2", "r there");
    box("other", "r elsewhere");
    EXPECT_EQ(sent("m", "elsewhere"),
              (Lines{"m:0 here", "r:0 a", "r2:0 a", "r:0 b", "r2:0 b", "other:0 c", "error: nobody: no such object"}));
}

TEST_F(BoxesTest, MessageIsEditedSilently) {
    box("m", "message one");
    EXPECT_EQ(sent("m", "set two \"three four\" \"5\""), Lines{});
    EXPECT_EQ(sent("m", "bang"), Lines{"m:0 two \"three four\" \"5\""});
    EXPECT_EQ(sent("m", "append \"a, b\", prepend 1, bang"), Lines{"m:0 list 1 two \"three four\" \"5\" \"a, b\""});
    EXPECT_EQ(sent("m", "set, bang"), Lines{});
    EXPECT_EQ(sent("m", "append x, bang"), Lines{"m:0 x"});
}

TEST_F(BoxesTest, MessageIsSetThroughItsRightInlet) {
    box("m", "message one");
    box("b", "t l");
    cord("b", 0, "m", 1);
    EXPECT_EQ(sent("b", "set 1 2"), Lines{"b:0 set 1 2"});
    EXPECT_EQ(sent("m", "bang"), Lines{"m:0 set 1 2"});
    sent("b", "7");
    EXPECT_EQ(sent("m", "bang"), Lines{"m:0 int 7"});
}

TEST_F(BoxesTest, MessageTakesLineEndsForBlanks) {
    open(file_of(R"({"box": {"id": "m", "maxclass": "message", "text": "a\rb;\rnobody\r\nc"}})"));
    EXPECT_EQ(sent("m", "bang"), (Lines{"m:0 a b", "error: nobody: no such object"}));
}

// ---- shown boxes

TEST_F(BoxesTest, ButtonSendsBangs) {
    box("b", "button");
    EXPECT_EQ(sent("b", "bang, 5, foo 1"), (Lines{"b:0 bang", "b:0 bang", "b:0 bang"}));
    EXPECT_TRUE(click_box(named("b")));
    EXPECT_EQ(take_lines(), Lines{"b:0 bang"});
}

TEST_F(BoxesTest, ToggleSwitches) {
    box("t", "toggle");
    EXPECT_EQ(sent("t", "bang, bang, 5, 0, 0.5, set 0, bang"),
              (Lines{"t:0 int 1", "t:0 int 0", "t:0 int 1", "t:0 int 0", "t:0 int 1", "t:0 int 1"}));
    EXPECT_EQ(sent("t", "foo"), Lines{"error: t: doesn't understand \"foo\""});
}

TEST_F(BoxesTest, NumbersKeepTheirKindAndLimits) {
    box("n", "number");
    box("f", "flonum");
    box("limited", "number @minimum -1 @maximum 10");
    EXPECT_EQ(sent("n", "5.9, set 3, bang, 7 8"), (Lines{"n:0 int 5", "n:0 int 3", "n:0 int 7"}));
    EXPECT_EQ(sent("f", "5, 2.5"), (Lines{"f:0 float 5.", "f:0 float 2.5"}));
    EXPECT_EQ(sent("limited", "20, -20, 1e300"), (Lines{"limited:0 int 10", "limited:0 int -1", "limited:0 int 10"}));
}

TEST_F(BoxesTest, TextFieldSendsItsText) {
    box("f", "textfield");
    EXPECT_EQ(sent("f", "hello 1"), Lines{"f:0 text hello 1"});
    EXPECT_EQ(sent("f", "set \"two words\", append more, bang"), Lines{"f:0 text two words more"});
    EXPECT_EQ(write_attribute(named("f"), gensym("outputmode"), parse_atoms("1")), 0);
    EXPECT_EQ(sent("f", "bang, clear, bang"), (Lines{"f:0 text \"two words more\"", "f:0 text \"\""}));
}

TEST_F(BoxesTest, CommentIsSilent) {
    box("c", "comment");
    EXPECT_EQ(sent("c", "set read me"), Lines{});
    EXPECT_EQ(outlets_of(named("c")), 0);
}

// ---- print, send and receive

TEST_F(BoxesTest, PrintWritesToTheConsole) {
    box("p", "print");
    box("q", "print hello");
    EXPECT_EQ(sent("p", "1 2, foo \"a b\", bang, 2.5"),
              (Lines{"post: p: 1 2", "post: p: foo \"a b\"", "post: p: bang", "post: p: 2.5"}));
    EXPECT_EQ(sent("q", "1"), Lines{"post: q: hello: 1"});
}

TEST_F(BoxesTest, SendReachesReceiversUntilTheyGo) {
    box("s", "s name");
    EXPECT_EQ(sent("s", "5"), Lines{});
    box("r", "r name");
    box("r2", "r name");
    EXPECT_EQ(sent("s", "5, foo 1"), (Lines{"r:0 int 5", "r2:0 int 5", "r:0 foo 1", "r2:0 foo 1"}));
    free_box(named("r"));
    EXPECT_EQ(sent("s", "bang"), Lines{"r2:0 bang"});
}

// ---- messages told apart

TEST_F(BoxesTest, RouteSendsTheRest) {
    box("r", "route foo 1 int list");
    EXPECT_EQ(sent("r", "foo"), Lines{"r:0 bang"});
    EXPECT_EQ(sent("r", "foo 5"), Lines{"r:0 int 5"});
    EXPECT_EQ(sent("r", "foo 5 6"), Lines{"r:0 list 5 6"});
    EXPECT_EQ(sent("r", "foo bar 6"), Lines{"r:0 bar 6"});
    EXPECT_EQ(sent("r", "1"), Lines{"r:1 bang"});
    EXPECT_EQ(sent("r", "1. x"), Lines{"r:1 x"});
    EXPECT_EQ(sent("r", "7"), Lines{"r:2 int 7"});
    EXPECT_EQ(sent("r", "7 8"), Lines{"r:3 list 7 8"});
    EXPECT_EQ(sent("r", "bar 1, 2.5, bang"), (Lines{"r:4 bar 1", "r:4 float 2.5", "r:4 bang"}));
}

TEST_F(BoxesTest, RouteChangesWhatItTellsApart) {
    box("r", "route foo");
    box("t", "t l");
    cord("t", 0, "r", 1);
    sent("t", "bar");
    EXPECT_EQ(sent("r", "foo 1, bar 1"), (Lines{"r:1 foo 1", "r:0 int 1"}));
}

TEST_F(BoxesTest, SelectSendsBangs) {
    box("s", "sel 1 foo");
    EXPECT_EQ(sent("s", "1, foo, symbol foo, 2, bar 1"),
              (Lines{"s:0 bang", "s:1 bang", "s:1 bang", "s:2 int 2", "s:2 bar 1"}));
}

TEST_F(BoxesTest, TriggerSendsFromRightToLeft) {
    box("t", "t i b l s f 7");
    EXPECT_EQ(sent("t", "5"), (Lines{"t:5 int 7", "t:4 float 5.", "t:3 ", "t:2 int 5", "t:1 bang", "t:0 int 5"}));
    EXPECT_EQ(sent("t", "foo 1"),
              (Lines{"t:5 int 7", "t:4 float 0.", "t:3 foo", "t:2 foo 1", "t:1 bang", "t:0 int 0"}));
    EXPECT_EQ(sent("t", "bang"), (Lines{"t:5 int 7", "t:4 float 0.", "t:3 ", "t:2 bang", "t:1 bang", "t:0 int 0"}));
}

// ---- lists and words

TEST_F(BoxesTest, PackSendsFromItsLeftInlet) {
    box("p", "pack 0 2.5 word s");
    box("right", "t l");
    cord("right", 0, "p", 1);
    EXPECT_EQ(sent("p", "bang"), Lines{"p:0 list 0 2.5 word \"\""});
    EXPECT_EQ(sent("right", "7, 8 x y z"), (Lines{"right:0 int 7", "right:0 list 8 x y z"}));
    EXPECT_EQ(sent("p", "1.9"), Lines{"p:0 list 1 8. x y"});
    EXPECT_EQ(sent("p", "3 4 5 6 7"), Lines{"p:0 list 3 4. \"5\" \"6\""});
    EXPECT_EQ(sent("p", "set 9, bang"), Lines{"p:0 list 9 4. \"5\" \"6\""});
}

TEST_F(BoxesTest, PackIsColdOnTheRight) {
    box("t", "t l l");
    box("p", "pack 0 0");
    cord("t", 0, "p", 0);
    cord("t", 1, "p", 1);
    EXPECT_EQ(sent("t", "5"), (Lines{"t:1 int 5", "t:0 int 5", "p:0 list 5 5"}));
}

TEST_F(BoxesTest, PrependAndAppendAddWords) {
    box("p", "prepend insert 2");
    box("a", "append x");
    EXPECT_EQ(
        sent("p", "foo, 5, bang, symbol \"a b\", 1 2"),
        (Lines{"p:0 insert 2 foo", "p:0 insert 2 5", "p:0 insert 2 bang", "p:0 insert 2 \"a b\"", "p:0 insert 2 1 2"}));
    EXPECT_EQ(sent("p", "set y, 1"), Lines{"p:0 y 1"});
    EXPECT_EQ(sent("a", "foo 1, 5"), (Lines{"a:0 foo 1 x", "a:0 list 5 x"}));
}

// ---- counting and time

TEST_F(BoxesTest, CounterCountsBetweenItsEnds) {
    box("c", "counter 1 3");
    EXPECT_EQ(sent("c", "bang, bang, bang, bang, bang"), (Lines{"c:0 int 1", "c:0 int 2", "c:3 int 1", "c:2 int 1",
                                                                "c:0 int 3", "c:2 int 0", "c:0 int 1", "c:0 int 2"}));
    EXPECT_EQ(sent("c", "set 3, bang"), (Lines{"c:3 int 2", "c:2 int 1", "c:0 int 3"}));
    EXPECT_EQ(sent("c", "down, jam 2, bang, bang"),
              (Lines{"c:2 int 0", "c:0 int 2", "c:3 int 3", "c:1 int 1", "c:0 int 1", "c:1 int 0", "c:0 int 3"}));
}

TEST_F(BoxesTest, CounterGoesToAndFro) {
    box("c", "counter 2 0 2");
    Lines numbers;
    for (const std::string &line : sent("c", "bang, bang, bang, bang, bang, bang"))
        if (line.starts_with("c:0"))
            numbers.push_back(line.substr(8));
    EXPECT_EQ(numbers, (Lines{"0", "1", "2", "1", "0", "1"}));
    box("one", "counter 5 5");
    EXPECT_EQ(sent("one", "bang, bang").back(), "one:0 int 5");
}

TEST_F(BoxesTest, MetroBangsWhenTimePasses) {
    box("m", "metro 100");
    const double start = clock_time();
    EXPECT_EQ(sent("m", "1"), Lines{"m:0 bang"});
    EXPECT_FALSE(run_next_clock(start + 99));
    EXPECT_TRUE(run_next_clock(start + 250));
    EXPECT_EQ(clock_time(), start + 100);
    EXPECT_TRUE(run_next_clock(start + 250));
    EXPECT_FALSE(run_next_clock(start + 250));
    EXPECT_EQ(clock_time(), start + 250);
    EXPECT_EQ(take_lines().size(), 2u);
    sent("m", "stop");
    EXPECT_FALSE(run_next_clock(start + 1000));
}

TEST_F(BoxesTest, MetroStopsWithItsBox) {
    box("m", "metro 0");
    sent("m", "bang");
    EXPECT_TRUE(run_next_clock(clock_time() + 1)); // never more often than once a millisecond
    free_box(named("m"));
    EXPECT_FALSE(run_next_clock(clock_time() + 10));
}

// ---- patchers in boxes

TEST_F(BoxesTest, MessagesPassThroughAPatcherInABox) {
    open(file_of(R"({"box": {"id": "in", "maxclass": "newobj", "text": "t l"}},
        {"box": {"id": "sub", "maxclass": "newobj", "text": "p sub", "patcher": {"boxes": [
            {"box": {"id": "i2", "maxclass": "inlet", "patching_rect": [90, 0, 9, 9], "comment": "right"}},
            {"box": {"id": "i1", "maxclass": "inlet", "patching_rect": [10, 0, 9, 9], "comment": "left"}},
            {"box": {"id": "p", "maxclass": "newobj", "text": "pack 0 0"}},
            {"box": {"id": "o", "maxclass": "outlet", "patching_rect": [10, 0, 9, 9], "comment": "out"}}],
          "lines": [{"patchline": {"source": ["i1", 0], "destination": ["p", 0]}},
            {"patchline": {"source": ["i2", 0], "destination": ["p", 1]}},
            {"patchline": {"source": ["p", 0], "destination": ["o", 0]}}]}}},
        {"box": {"id": "out", "maxclass": "newobj", "text": "print"}})",
                 R"({"patchline": {"source": ["in", 0], "destination": ["sub", 1]}},
        {"patchline": {"source": ["sub", 0], "destination": ["out", 0]}})"));
    EXPECT_EQ(sent("in", "7"), (Lines{"in:0 int 7", "i2:0 int 7"}));
    EXPECT_EQ(sent("sub", "1"), (Lines{"i1:0 int 1", "p:0 list 1 7", "sub:0 list 1 7", "post: out: 1 7"}));
    EXPECT_EQ(sent("sub::p", "2"), (Lines{"p:0 list 2 7", "sub:0 list 2 7", "post: out: 2 7"}));
    EXPECT_EQ(assistance(named("sub"), true, 1), "right");
    EXPECT_EQ(assistance(named("sub"), false, 0), "out");
    free_box(named("sub::i1"));
    free_box(named("sub::o"));
    EXPECT_EQ(sent("sub", "1"), Lines{});
    EXPECT_EQ(sent("sub::p", "2"), Lines{"p:0 list 2 7"});
}

// ---- order, circles, threads

TEST_F(BoxesTest, CordsFireFromRightToLeft) {
    open(file_of(R"({"box": {"id": "b", "maxclass": "button", "patching_rect": [0, 0, 20, 20]}},
        {"box": {"id": "left", "maxclass": "button", "patching_rect": [0, 50, 20, 20]}},
        {"box": {"id": "right", "maxclass": "button", "patching_rect": [90, 50, 20, 20]}},
        {"box": {"id": "low", "maxclass": "button", "patching_rect": [0, 90, 20, 20]}},
        {"box": {"id": "pack", "maxclass": "newobj", "text": "pack 0 0", "patching_rect": [100, 50, 50, 20]}})",
                 R"({"patchline": {"source": ["b", 0], "destination": ["left", 0]}},
        {"patchline": {"source": ["b", 0], "destination": ["pack", 0]}},
        {"patchline": {"source": ["b", 0], "destination": ["low", 0]}},
        {"patchline": {"source": ["b", 0], "destination": ["right", 0]}},
        {"patchline": {"source": ["b", 0], "destination": ["pack", 1]}})"));
    EXPECT_EQ(sent("b", "bang"), (Lines{"b:0 bang", "pack:0 list 0 0", "right:0 bang", "low:0 bang", "left:0 bang"}));
}

TEST_F(BoxesTest, CordsFireInTheirSavedOrder) {
    open(file_of(R"({"box": {"id": "b", "maxclass": "button", "patching_rect": [0, 0, 20, 20]}},
        {"box": {"id": "left", "maxclass": "button", "patching_rect": [0, 50, 20, 20]}},
        {"box": {"id": "right", "maxclass": "button", "patching_rect": [90, 50, 20, 20]}})",
                 R"({"patchline": {"source": ["b", 0], "destination": ["right", 0], "order": 1}},
        {"patchline": {"source": ["b", 0], "destination": ["left", 0], "order": 0}})"));
    EXPECT_EQ(sent("b", "bang"), (Lines{"b:0 bang", "left:0 bang", "right:0 bang"}));
}

TEST_F(BoxesTest, CirclesEnd) {
    box("m", "message @text \"1, 2\"");
    cord("m", 0, "m");
    const Lines heard = sent("m", "bang");
    EXPECT_EQ(heard.back(), "error: m: stack overflow: messages go round in a circle");
    EXPECT_EQ(std::count(heard.begin(), heard.end(), heard.back()), 1);
    box("s", "s circle");
    box("r", "r circle");
    cord("r", 0, "s");
    EXPECT_EQ(sent("s", "bang").back(), "error: r: stack overflow: messages go round in a circle");
}

TEST_F(BoxesTest, ALoopThroughTheQueueIsStopped) {
    struct Again {
        t_object object;
        static void run(Again *x, t_symbol *, short, t_atom *) { defer_low(x, (method)run, nullptr, 0, nullptr); }
    };
    static t_class *cls = class_new("again", nullptr, nullptr, sizeof(Again), nullptr, A_GIMME, 0);
    void *again = object_alloc(cls);
    defer_low(again, (method)Again::run, nullptr, 0, nullptr);
    drain_queue();
    EXPECT_EQ(take_lines(), Lines{"error: -: the queue does not become empty: something queues itself for ever"});
    object_free(again);
    EXPECT_FALSE(run_queue_once());
}

TEST_F(BoxesTest, EveryInletAndOutletTellsWhatItIs) {
    for (const char *typed :
         {"button", "comment", "counter", "flonum", "loadbang", "message", "metro", "number", "pack", "prepend",
          "append", "print", "receive x", "route a b", "select a", "send x", "textfield", "toggle", "trigger"}) {
        t_object *made = box(typed, typed);
        for (long i = 0; i < inlets_of(made); ++i)
            EXPECT_NE(assistance(made, true, i), "") << typed;
        for (long i = 0; i < outlets_of(made); ++i)
            EXPECT_NE(assistance(made, false, i), "") << typed;
        EXPECT_EQ(assistance(made, true, -1), "");
    }
}

TEST_F(BoxesTest, BoxesWorkOnBothThreads) {
    box("m", "message @text \"$1 x\"");
    box("p", "pack s s");
    cord("m", 0, "p");
    for (int i = 0; i < 200; ++i) {
        send_on_scheduler(named("m"), parse_atoms("other " + std::to_string(i)));
        sent("m", "set $1 " + std::to_string(i) + ", word");
    }
    wait_until_delivered();
    EXPECT_EQ(sent("p", "a b"), Lines{"p:0 a b"});
}
