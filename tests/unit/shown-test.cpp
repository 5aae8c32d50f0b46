// What a front end is told of patchers and boxes, and what a person enters there.
#include <filesystem>

#include "ext.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

using ShownTest = PatchTest;

const std::string pair = R"({"box": {"id": "obj-1", "maxclass": "number", "varname": "n", "hint": "a hint",
        "patching_rect": [10, 20, 60, 22]}},
    {"box": {"id": "obj-2", "maxclass": "message", "varname": "m", "text": "one, two"}})";

} // namespace

TEST_F(ShownTest, DescribesWhatTheFileSays) {
    open(file_of(pair));
    EXPECT_EQ(print_atoms(described(named("n"), "hint")), "\"a hint\"");
    EXPECT_EQ(print_atoms(described(named("n"), "patching_rect")), "10 20 60 22");
    EXPECT_TRUE(described(named("n"), "annotation").empty());
    EXPECT_TRUE(described(named("n"), "varname").size() == 1);
    EXPECT_TRUE(described(patcher, "no such key").empty());
}

TEST_F(ShownTest, TellsCordsWithTheirPoints) {
    open(file_of(pair, R"({"patchline": {"source": ["obj-1", 0], "destination": ["obj-2", 1], "hidden": 1,
                                         "midpoints": [1.5, 2, 3, 4, 5]}},
                          {"patchline": {"source": ["obj-2", 0], "destination": ["obj-1", 0]}})"));
    const std::vector<ShownCord> cords = cords_in(patcher);
    ASSERT_EQ(cords.size(), 2u);
    EXPECT_EQ(cords[0].from, named("n"));
    EXPECT_EQ(cords[0].to, named("m"));
    EXPECT_EQ(cords[0].inlet, 1);
    EXPECT_TRUE(cords[0].hidden);
    EXPECT_EQ(cords[0].midpoints, (std::vector<double>{1.5, 2, 3, 4})); // half a point is none
    EXPECT_FALSE(cords[1].hidden);
    EXPECT_TRUE(cords[1].midpoints.empty());
}

TEST_F(ShownTest, TellsValuesAndTheirChanges) {
    open(file_of(pair));
    box("t", "toggle");
    box("p", "print");
    std::vector<t_object *> repainted;
    FrontEnd front = front_end();
    front.repaint = [&](t_object *changed) { repainted.push_back(changed); };
    start_host(front);
    EXPECT_EQ(print_atoms(shown_value(named("n"))), "0");
    EXPECT_EQ(print_atoms(shown_value(named("m"))), "\"one, two\"");
    sent("n", "set 7");
    sent("m", "set three");
    sent("t", "1");
    EXPECT_EQ(print_atoms(shown_value(named("n"))), "7");
    EXPECT_EQ(print_atoms(shown_value(named("m"))), "three");
    EXPECT_EQ(print_atoms(shown_value(named("t"))), "1");
    EXPECT_TRUE(shown_value(named("p")).empty());
    EXPECT_EQ(repainted, (std::vector<t_object *>{named("n"), named("m"), named("t")}));
    start_host(front_end());
}

TEST_F(ShownTest, TakesWhatAPersonEnters) {
    open(file_of(pair));
    box("f", "textfield");
    t_atom seven, text;
    atom_setlong(&seven, 7);
    atom_setsym(&text, gensym("two words"));
    EXPECT_TRUE(enter_value(named("n"), {&seven, 1}));
    EXPECT_EQ(take_lines(), (Lines{"n:1 bang", "n:0 int 7"}));
    EXPECT_TRUE(enter_value(named("n"), {}));
    EXPECT_EQ(take_lines(), Lines{"n:1 bang"});
    EXPECT_TRUE(enter_value(named("f"), {&text, 1}));
    EXPECT_EQ(take_lines(), Lines{"f:0 text two words"});
    EXPECT_FALSE(enter_value(named("m"), {&seven, 1}));
}

TEST_F(ShownTest, TellsOfBoxesCordsAndTheMarkOfBeingChanged) {
    open(file_of(pair));
    long changes = 0;
    std::vector<t_object *> gone;
    FrontEnd front = front_end();
    front.patcher_changed = [&](t_object *changed) { changes += changed == patcher; };
    front.box_goes = [&](t_object *going) { gone.push_back(going); };
    start_host(front);
    const auto changes_since = [&] { return std::exchange(changes, 0); };
    t_object *made = box("b", "button");
    EXPECT_EQ(changes_since(), 1);
    cord("n", 0, "b");
    EXPECT_EQ(changes_since(), 1);
    jpatcher_set_dirty(patcher, 1);
    jpatcher_set_dirty(patcher, 1);
    EXPECT_EQ(changes_since(), 1);
    set_clean(patcher);
    EXPECT_EQ(changes_since(), 1);
    free_box(made);
    EXPECT_EQ(changes_since(), 1);
    EXPECT_EQ(gone, std::vector<t_object *>{made});
    start_host(front_end());
}

TEST_F(ShownTest, TellsOfWork) {
    box("metro", "metro 20");
    long work = 0;
    FrontEnd front = front_end();
    front.work = [&] { ++work; };
    start_host(front);
    EXPECT_FALSE(next_clock_due());
    send_message(named("metro"), parse_atoms("1"));
    EXPECT_GT(work, 0);
    EXPECT_EQ(next_clock_due(), clock_time() + 20);
    send_message(named("metro"), parse_atoms("0"));
    EXPECT_FALSE(next_clock_due());
    start_host(front_end());
}

TEST_F(ShownTest, KnowsTheFileAndTheBoxAround) {
    open(file_of(R"({"box": {"id": "obj-1", "maxclass": "newobj", "varname": "p", "text": "p in",
                             "patcher": {"boxes": [], "lines": []}}})"));
    EXPECT_EQ(std::filesystem::path(file_of_patcher(patcher)).parent_path(), folder());
    EXPECT_EQ(box_around(patcher_in(named("p"))), named("p"));
    EXPECT_EQ(box_around(patcher), nullptr);
    std::string reason;
    ASSERT_TRUE(save_patcher(patcher, "other.maxpat", reason));
    EXPECT_EQ(file_of_patcher(patcher), folder() + "/other.maxpat");
}
