// The help patcher: it opens, what can be clicked in it works, and nothing of the box is missing in it.
#include <algorithm>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>

#include "ext.h"
#include "kernel/attributes.h"
#include "kernel/classes.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

using Json = nlohmann::ordered_json;

const std::string help_file = SOURCE_DIR "/package/help/vrk.tessaroll.maxhelp";
constexpr const char *tabs[] = {"basic", "editing", "files", "embedding", "attributes", "?"};

class HelpPatcherTest : public PatchTest {
  protected:
    void SetUp() override {
        PatchTest::SetUp();
        std::string reason;
        ASSERT_TRUE(load_plugin(VRK_PLUGIN, reason)) << reason;
        answer_save_dialogs();
        set_search_folders({SOURCE_DIR "/package/examples"});
        free_patcher(patcher);
        patcher = open_patcher(help_file, reason);
        ASSERT_NE(patcher, nullptr) << reason;
        drain_queue();
    }

    void answer_save_dialogs() {
        FrontEnd front = front_end();
        front.save_dialog = [this](const std::string &, const std::string &) { return folder() + "/written.xml"; };
        start_host(front);
    }

    // What the console and the setters have to complain of.
    Lines take_complaints() {
        Lines complaints = take_lines();
        std::erase_if(complaints, [](const std::string &line) {
            return !line.starts_with("error: ") && !line.starts_with("warn: ") && !line.starts_with("misuse: ") &&
                   line.find(" refused ") == line.npos;
        });
        return complaints;
    }

    // Every box, those in inner patchers behind the box that they are in.
    std::vector<t_object *> all_boxes() { return boxes_below(patcher); }

    long rows(const std::string &list) {
        ViewState state{};
        EXPECT_TRUE(data_view_state(named(list), state)) << list;
        return state.rows;
    }

  private:
    static std::vector<t_object *> boxes_below(t_object *top) {
        std::vector<t_object *> boxes;
        for (t_object *box : boxes_in(top)) {
            boxes.push_back(box);
            if (t_object *inner = patcher_in(box))
                for (t_object *each : boxes_below(inner))
                    boxes.push_back(each);
        }
        return boxes;
    }
};

Json help() {
    std::ifstream file(help_file);
    return Json::parse(file)["patcher"];
}

// Calls the function for a patcher and those in it, with the text of the box around.
using Visitor = std::function<void(const Json &patcher, const std::string &name)>;
void visit(const Json &patcher, const std::string &name, const Visitor &visitor) {
    visitor(patcher, name);
    for (const Json &each : patcher["boxes"])
        if (each["box"].contains("patcher"))
            visit(each["box"]["patcher"], each["box"]["text"], visitor);
}

// Calls the function for every box in every patcher.
void visit_boxes(const std::function<void(const Json &box)> &visitor) {
    visit(help(), "root", [&](const Json &patcher, const std::string &) {
        for (const Json &each : patcher["boxes"])
            visitor(each["box"]);
    });
}

// "append": the words that message boxes begin with, and those that stand before a colon in a comment.
std::set<std::string> words_shown() {
    std::set<std::string> words;
    visit_boxes([&](const Json &box) {
        const std::string text = box.value("text", "");
        if (box["maxclass"] == "message")
            for (const TypedMessage &message : parse_messages(text))
                words.insert(message.atoms.empty() ? "" : atom_getsym(&message.atoms[0])->s_name);
        if (const size_t colon = text.find(": "); box["maxclass"] == "comment" && colon != text.npos)
            words.insert(text.substr(0, colon));
    });
    return words;
}

// Only the host calls it.
bool is_private(const Method &message) { return message.codes == std::vector<short>{A_CANT}; }

struct Rect {
    double left, top, right, bottom;
};

Rect rect_of(const Json &box) {
    const Json &rect = box["patching_rect"];
    return {rect[0], rect[1], rect[0].get<double>() + rect[2].get<double>(),
            rect[1].get<double>() + rect[3].get<double>()};
}

bool overlap(const Rect &a, const Rect &b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// Whether a text has room in its box, by the width of a usual character of the font.
bool fits(const Json &box) {
    const double size = box.value("fontsize", 12.0), margin = 8;
    const Rect rect = rect_of(box);
    const auto in_a_row = static_cast<size_t>((rect.right - rect.left - margin) / (size * 7 / 12));
    size_t rows = 0;
    std::istringstream text(box.value("text", ""));
    for (std::string line; std::getline(text, line);) {
        size_t used = 0;
        ++rows;
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            if (used > 0 && used + 1 + word.size() > in_a_row) {
                used = 0;
                ++rows;
            }
            used += word.size() + (used > 0);
            if (used > in_a_row)
                return false;
        }
    }
    return static_cast<double>(rows) * size * 1.1 <= rect.bottom - rect.top;
}

} // namespace

TEST_F(HelpPatcherTest, OpensWithoutAComplaint) {
    EXPECT_EQ(take_complaints(), Lines{});
    for (const char *tab : {"basic", "editing", "attributes"})
        EXPECT_EQ(rows(std::string(tab) + "_tab::list"), 4) << tab;
    EXPECT_EQ(rows("files_tab::list"), 0);
    EXPECT_EQ(rows("embedding_tab::list"), 5);
    EXPECT_FALSE(is_dirty(patcher));
}

TEST_F(HelpPatcherTest, EverythingThatCanBeClickedWorks) {
    int messages = 0;
    for (t_object *box : all_boxes()) {
        if (!click_box(box))
            continue;
        messages += class_of_box(box) == gensym("message");
        drain_queue();
        EXPECT_EQ(take_complaints(), Lines{}) << class_of_box(box)->s_name;
    }
    EXPECT_GT(messages, 30);
}

TEST_F(HelpPatcherTest, TheExampleIsReadAndWritten) {
    EXPECT_TRUE(click_box(named("files_tab::read")));
    drain_queue();
    EXPECT_EQ(rows("files_tab::list"), 128);
    EXPECT_TRUE(click_box(named("files_tab::write")));
    drain_queue();
    EXPECT_NE(read_file(folder() + "/written.xml").find(">Gunshot</string>"), std::string::npos);
    EXPECT_EQ(take_complaints(), Lines{});
}

TEST_F(HelpPatcherTest, WhatIsTypedArrives) {
    click_box(named("files_tab::read"));
    drain_queue();
    const std::string file = folder() + "/typed name.xml";
    for (t_object *box : all_boxes())
        if (class_of_box(box) == gensym("textfield"))
            send_message(box, parse_atoms("\"" + file + "\""));
    drain_queue();
    EXPECT_EQ(take_complaints(), Lines{});
    EXPECT_NE(read_file(file).find(">Gunshot</string>"), std::string::npos);
    EXPECT_EQ(sent("editing_tab::list", "bang")[0], "list:2 " + file);
}

TEST_F(HelpPatcherTest, TheOutletsAreShown) {
    for (const char *tab : {"basic", "editing", "attributes", "embedding"}) {
        const std::string list = std::string(tab) + "_tab::list";
        const Lines heard = sent(list, "bang");
        EXPECT_EQ(heard.size(), 6u) << tab; // each outlet, and the box behind it
        EXPECT_EQ(std::count(heard.begin(), heard.end(), "list:1 int " + std::to_string(rows(list))), 1) << tab;
    }
}

TEST_F(HelpPatcherTest, ShowsEveryMessageAndAttribute) {
    const std::set<std::string> words = words_shown();
    const auto &cls = *reinterpret_cast<const Class *>(named("basic_tab::list")->o_messlist);
    for (const Method &message : cls.methods)
        EXPECT_TRUE(is_private(message) || words.contains(message.name->s_name)) << message.name->s_name;
    for (const Attribute *attribute : cls.attributes)
        EXPECT_TRUE(words.contains(attribute->name->s_name)) << attribute->name->s_name;
}

TEST_F(HelpPatcherTest, IsLaidOutInTabs) {
    const Json root = help();
    EXPECT_EQ(root["showontab"], 0);
    EXPECT_EQ(root["showrootpatcherontab"], 0);
    std::vector<std::string> found;
    for (const Json &each : root["boxes"]) {
        const Json &box = each["box"];
        if (!box.contains("patcher"))
            continue;
        found.push_back(box["text"]);
        const std::string name = found.back().substr(2);
        EXPECT_EQ(box["varname"], (name == "?" ? "q" : name) + "_tab");
        EXPECT_EQ(box["patcher"]["showontab"], 1) << name;
    }
    std::vector<std::string> expected;
    for (const char *tab : tabs)
        expected.push_back(std::string("p ") + tab);
    EXPECT_EQ(found, expected);
}

TEST_F(HelpPatcherTest, HasRoomForEverything) {
    visit(help(), "root", [](const Json &tab, const std::string &name) {
        const Json &boxes = tab["boxes"];
        for (size_t i = 0; i < boxes.size(); ++i) {
            const Json &box = boxes[i]["box"];
            const Rect rect = rect_of(box);
            EXPECT_TRUE(rect.left >= 0 && rect.top >= 0 && rect.right <= tab["rect"][2].get<double>() &&
                        rect.bottom <= tab["rect"][3].get<double>())
                << name << " is too small for " << box;
            EXPECT_TRUE(fits(box)) << name << ": " << box;
            for (size_t other = 0; other < i; ++other)
                EXPECT_FALSE(overlap(rect, rect_of(boxes[other]["box"]))) << name << ": " << box;
        }
    });
}

TEST_F(HelpPatcherTest, IsSavedAsItStands) { EXPECT_EQ(saved_text(), read_file(help_file)); }
