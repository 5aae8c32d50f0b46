// Every key that patchers and boxes are read by, with values of every kind: from a person who types, and from files.
#include <set>

#include "ext.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

// As they are typed in a patcher.
const char *const classes[] = {"append x", "button",    "comment", "counter",    "flonum",        "inlet",
                               "loadbang", "message",   "metro 5", "number",     "outlet",        "pack 1 2.",
                               "patcher",  "prepend x", "print",   "receive r1", "route a 1",     "select 1",
                               "send r2",  "textfield", "toggle",  "trigger b",  "vrk.tessaroll", "no.such.class"};

const char *const keys_of_boxes[] = {"boxes",
                                     "cellh",
                                     "cellv",
                                     "comment",
                                     "embed",
                                     "fontname",
                                     "fontsize",
                                     "frame",
                                     "hidden",
                                     "id",
                                     "lines",
                                     "maxclass",
                                     "maximum",
                                     "minimum",
                                     "oldarguments",
                                     "numinlets",
                                     "numoutlets",
                                     "outlettype",
                                     "outputmode",
                                     "patcher",
                                     "patching_rect",
                                     "presentation_rect",
                                     "restoreitems",
                                     "root",
                                     "saved_object_attributes",
                                     "selectcolor",
                                     "text",
                                     "varname",
                                     "xmlpath"};

const char *const typed_values[] = {
    "", "5", "-1", "1e30", "99999999999", "word", "\"\"", "\"two words\"", "1 2", "a 1.5 \"b c\"", "-9. -9. -9. -9."};

const char *const values[] = {"null",
                              "true",
                              "5",
                              "-1",
                              "1e300",
                              "18446744073709551615",
                              "\"word\"",
                              "\"\"",
                              "\"a\\u0000b\"",
                              "[]",
                              "[1, 2]",
                              "[\"a\", 1.5, true]",
                              "[-9.0, -9.0, -9.0, -9.0]",
                              "[null]",
                              "[[1]]",
                              "{}",
                              "{\"boxes\": 5, \"lines\": [{}]}",
                              "{\"embed\": {}, \"id\": 1}"};

class PatcherKeysTest : public PatchTest {
  protected:
    static void SetUpTestSuite() {
        std::string reason;
        start_host({});
        ASSERT_TRUE(load_plugin(VRK_PLUGIN, reason)) << reason;
        stop_host();
    }

    // Boxes of all classes, each made with the key and one of the values.
    void type_boxes(const char *key) {
        for (const char *typed : classes) {
            const std::vector<t_atom> words = parse_atoms(typed);
            if (!is_box_class(atom_getsym(&words[0])))
                continue;
            for (const char *value : typed_values) {
                std::vector<t_atom> atoms = parse_atoms(value);
                const OwnedDictionary dictionary = empty_dictionary();
                dictionary_appendatoms(dictionary.get(), gensym(key), static_cast<long>(atoms.size()), atoms.data());
                EXPECT_NE(new_box(patcher, atom_getsym(&words[0]), dictionary.get(), std::span(words).subspan(1)),
                          nullptr);
            }
        }
    }

    // The same from a file, where boxes that are typed are objects.
    static std::string file_with(const char *key) {
        const std::set<std::string> shown{"button", "comment", "flonum",    "inlet",  "message",
                                          "number", "outlet",  "textfield", "toggle", "vrk.tessaroll"};
        std::string boxes;
        for (const char *typed : classes)
            for (const char *value : values) {
                Json box{{"maxclass", shown.contains(typed) ? typed : "newobj"}, {"text", typed}};
                box[key] = Json::parse(value);
                boxes += (boxes.empty() ? "" : ", ") + Json{{"box", box}}.dump();
            }
        return file_of(boxes);
    }

    // A cord from every box, and one to every box.
    void join_boxes() {
        t_object *ends = box("ends", "message");
        for (t_object *each : boxes_in(patcher)) {
            if (each != ends && outlets_of(each) > 0)
                connect_boxes(each, 0, ends);
            if (each != ends && inlets_of(each) > 0)
                connect_boxes(ends, 0, each);
        }
    }

    // What the window asks of a box.
    void look_at_boxes(const char *key) {
        t_object *view = open_patcher_view(patcher);
        for (t_object *each : boxes_in(patcher)) {
            described(each, key);
            shown_value(each);
            saved_box(each);
            painted_row(each, 1, view);
        }
        close_patcher_view(view);
    }

    // All boxes and cords are there when the saved file is opened, and it is saved as it is then.
    void expect_to_come_back() {
        const size_t boxes = boxes_in(patcher).size(), cords = cords_in(patcher).size();
        const std::string text = saved_text();
        take_lines();
        open(text);
        EXPECT_EQ(boxes_in(patcher).size(), boxes);
        EXPECT_EQ(cords_in(patcher).size(), cords);
        EXPECT_TRUE(saved_text() == text) << "it is saved otherwise than it was opened";
    }

    // How many ids there are, of boxes that were typed.
    size_t ids_saved() {
        std::set<std::string> ids;
        const Json file = saved();
        for (const Json &each : file["patcher"]["boxes"])
            ids.insert(each["box"]["id"].get<std::string>());
        return ids.size();
    }
};

} // namespace

TEST_F(PatcherKeysTest, AnythingMayBeTypedUnderAnyKey) {
    for (const char *key : keys_of_boxes) {
        SCOPED_TRACE(key);
        open(file_of(""));
        type_boxes(key);
        drain_queue();
        join_boxes();
        look_at_boxes(key);
        EXPECT_EQ(ids_saved(), boxes_in(patcher).size());
        expect_to_come_back();
    }
}

TEST_F(PatcherKeysTest, AnythingMayStandInAFileUnderAnyKey) {
    for (const char *key : keys_of_boxes) {
        SCOPED_TRACE(key);
        open(file_with(key));
        join_boxes();
        look_at_boxes(key);
        expect_to_come_back();
    }
}

TEST_F(PatcherKeysTest, APatcherIsSavedWithWhateverStandsUnderItsKeys) {
    for (const char *key :
         {"boxes", "lines", "rect", "fileversion", "bgcolor", "default_fontname", "openinpresentation"})
        for (const char *value : values) {
            SCOPED_TRACE(std::string(key) + ": " + value);
            const Json file{{"patcher", {{key, Json::parse(value)}, {"title", "x"}}}};
            open(file.dump());
            described(patcher, key);
            EXPECT_EQ(saved(), file);
        }
}

TEST_F(PatcherKeysTest, ACordIsSavedWithWhateverStandsUnderItsKeys) {
    for (const char *key : {"patchline", "source", "destination", "order", "hidden", "midpoints"})
        for (const char *value : values) {
            SCOPED_TRACE(std::string(key) + ": " + value);
            Json line{{"source", {"a", 0}}, {"destination", {"a", 0}}};
            line[key] = Json::parse(value);
            Json element{{"patchline", line}};
            if (std::string(key) == "patchline")
                element[key] = Json::parse(value);
            const std::string text = file_of(R"({"box": {"id": "a", "maxclass": "message"}})", element.dump());
            open(text);
            cords_in(patcher);
            EXPECT_EQ(saved(), Json::parse(text));
        }
}

// Each word of each record of the text form in turn is of each kind, or the record ends before it.
TEST_F(PatcherKeysTest, AnythingMayStandInARecord) {
    const std::vector<std::string> records[] = {{"#N", "vpatcher", "1", "2", "3", "4"},
                                                {"#P", "user", "vrk.tessaroll", "1", "2", "3", "4", "5", "6"},
                                                {"#P", "user", "no.such.class", "1", "2", "3", "4"},
                                                {"#P", "newex", "1", "2", "3", "196617", "route", "a", "b"},
                                                {"#P", "message", "1", "2", "3", "196617", "a", "$1"},
                                                {"#P", "hidden", "number", "1", "2", "3", "4"},
                                                {"#P", "connect", "0", "0", "1", "0"},
                                                {"#X", "restore", "1", "2"},
                                                {"#P", "window", "setfont", "x", "9."}};
    for (const std::vector<std::string> &record : records)
        for (size_t place = 0; place < record.size(); ++place)
            for (const char *word : {"", "5", "-1", "1e300", "99999999999999999999", "word", "\"\"", "\\;", "#P"}) {
                std::string text = "max v2;\n#N vpatcher 10 20 110 220;\n#P number 30 40 35 9;\n#P toggle 10 10 15;\n";
                for (size_t i = 0; i < (*word ? record.size() : place); ++i)
                    text += (i == place ? word : record[i]) + " ";
                SCOPED_TRACE(text);
                open(text + ";\n#P pop;\n");
                expect_to_come_back();
            }
}

// ---- what was found so

TEST_F(PatcherKeysTest, AnIdThatIsNoTextIsReplaced) {
    for (const char *id : {"", "5", "1.5", "1 2", "\"\""})
        box("b", std::string("message 1 @id ") + id);
    const Json file = saved();
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(file["patcher"]["boxes"][i]["box"]["id"], "obj-" + std::to_string(i + 1));
}

TEST_F(PatcherKeysTest, AnIdThatIsTakenIsReplacedWithAWarning) {
    box("b", "message 1 @id a");
    EXPECT_EQ(take_lines(), no_lines);
    box("c", "number @id a");
    EXPECT_EQ(take_lines(), (Lines{"warn: c: another box has the id \"a\" already"}));
    cord("b", 0, "c");
    const Json file = saved();
    EXPECT_EQ(file["patcher"]["lines"].dump(), R"([{"patchline":{"destination":["obj-1",0],"source":["a",0]}}])");
    EXPECT_EQ(file["patcher"]["boxes"][1]["box"]["id"], "obj-1");
    open(file.dump());
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(sent("b", "bang"), (Lines{"b:0 int 1", "c:0 int 1"}));
}

TEST_F(PatcherKeysTest, InletsAndOutletsAreSavedAsTheyAre) {
    box("b", "message 1 @numinlets x @numoutlets 7 @outlettype 1 2");
    box("c", "print @outlettype 1");
    const Json boxes = saved()["patcher"]["boxes"];
    EXPECT_EQ(boxes[0]["box"]["numinlets"], 2);
    EXPECT_EQ(boxes[0]["box"]["numoutlets"], 1);
    EXPECT_EQ(boxes[0]["box"]["outlettype"], Json::array({""}));
    EXPECT_FALSE(boxes[1]["box"].contains("outlettype"));
}

TEST_F(PatcherKeysTest, ThePatcherInABoxIsSavedWhateverWasTypedInItsPlace) {
    t_object *around = box("p", "patcher @patcher 5");
    const OwnedDictionary dictionary = empty_dictionary();
    ASSERT_NE(new_box(patcher_in(around), gensym("button"), dictionary.get()), nullptr);
    EXPECT_EQ(saved_member("obj-1", "patcher")["boxes"][0]["box"]["maxclass"], "button");
}
