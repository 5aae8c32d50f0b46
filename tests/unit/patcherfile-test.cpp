// Patcher files in JSON: opening, saving, and what is wrong in them.
#include <cfloat>
#include <cmath>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "ext.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

// A box that keeps a list of words in the file while it is asked to, and has attributes.
struct Keeper {
    t_jbox box;
    long keep;
    double color[2];
    std::vector<t_atom> *words;
};

t_class *keeper_class;

void *keeper_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = static_cast<Keeper *>(object_alloc(keeper_class));
    t_dictionary *dictionary = object_dictionaryarg(argc, argv);
    jbox_new(&x->box, 0, argc, argv);
    x->box.b_firstin = &x->box.b_ob;
    x->words = new std::vector<t_atom>;
    long count = 0;
    t_atom *words = nullptr;
    if (dictionary_getatoms(dictionary, gensym("words"), &count, &words) == MAX_ERR_NONE)
        x->words->assign(words, words + count);
    outlet_new(x, nullptr);
    attr_dictionary_process(x, dictionary);
    jbox_ready(&x->box);
    return x;
}

void keeper_free(Keeper *x) {
    jbox_free(&x->box);
    delete x->words;
}

void keeper_save(Keeper *x, t_dictionary *dictionary) {
    if (x->keep)
        dictionary_appendatoms(dictionary, gensym("words"), static_cast<long>(x->words->size()), x->words->data());
}

void keeper_words(Keeper *x, t_symbol *, long argc, t_atom *argv) { x->words->assign(argv, argv + argc); }

void register_keeper() {
    keeper_class = class_new("keeper", (method)keeper_new, (method)keeper_free, sizeof(Keeper), nullptr, A_GIMME, 0);
    keeper_class->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    jbox_initclass(keeper_class, JBOX_FONTATTR);
    class_addmethod(keeper_class, (method)keeper_save, "jsave", A_CANT, 0);
    class_addmethod(keeper_class, (method)keeper_words, "words", A_GIMME, 0);
    class_addattr(keeper_class, attr_offset_new("keep", gensym("long"), 0, nullptr, nullptr, offsetof(Keeper, keep)));
    class_addattr(keeper_class, attr_offset_array_new("color", gensym("float64"), 2, 0, nullptr, nullptr, 0,
                                                      offsetof(Keeper, color)));
    class_attr_addattr_parse(keeper_class, "keep", "save", gensym("long"), 0, "1");
    class_attr_addattr_parse(keeper_class, "color", "save", gensym("long"), 0, "1");
    class_register(CLASS_BOX, keeper_class);
}

class PatcherFileTest : public PatchTest {
  protected:
    static void SetUpTestSuite() {
        if (!keeper_class)
            register_keeper();
    }

    // Opens and saves; the two values are the same.
    void expect_same(const std::string &text) {
        open(text);
        EXPECT_EQ(Json::parse(text), saved()) << saved_text();
        EXPECT_EQ(saved_text(), saved_text());
    }

    // What the console says when a file of these boxes and cords is opened.
    Lines complaints(const std::string &boxes, const std::string &cords = "") {
        take_lines();
        open(file_of(boxes, cords));
        saved_text();
        return take_lines();
    }
};

constexpr const char *classic_layout = "{\n\t\"patcher\" : \t{\n\t\t\"fileversion\" : 1,\n\t\t\"rect\" : [ 34.0, 78.0, "
                                       "775.0, 600.0 ],\n\t\t\"bgcolor\" : [  ],\n\t\t\"boxes\" : [ \t\t\t{\n\t\t\t\t"
                                       "\"box\" : \t\t\t\t{\n\t\t\t\t\t\"id\" : \"obj-2\",\n\t\t\t\t\t\"maxclass\" : "
                                       "\"button\",\n\t\t\t\t\t\"patching_rect\" : [ 1.0, 2.0, 3.0, 4.0 ]\n\t\t\t\t}\n"
                                       "\n\t\t\t}\n ],\n\t\t\"lines\" : [  ]\n\t}\n\n}\n";

} // namespace

// ---- what was not edited stays

TEST_F(PatcherFileTest, KeepsBothLayouts) {
    expect_same(classic_layout);
    expect_same(Json::parse(classic_layout).dump(4));
    expect_same(Json::parse(classic_layout).dump());
    EXPECT_NE(saved_text().find("\"rect\": [ 34.0, 78.0, 775.0, 600.0 ],\n"), std::string::npos) << saved_text();
}

TEST_F(PatcherFileTest, KeepsKeysNumbersAndOrder) {
    expect_same(R"({"before": [1, 1.0, 9007199254740993, 18446744073709551615, -0.0, 1e300], "patcher": {
        "zebra": {"deep": [[], {}, null, true, "\u0000 \u00e4"]}, "rect": [34, 78.0, 775, 600],
        "boxes": [{"extra": 1, "box": {"maxclass": "keeper", "id": "obj-3", "words": ["12", 12, 12.0, "a,b;c",
            "quote\" \\", "line\nfeed\ttab\u0001", "日本語 العربية", ""], "keep": 1, "color": [1, 0], "fontsize": 12,
            "numoutlets": 1, "hint": "x", "patching_rect": [1, 2, 3, 4], "presentation_rect": [1, 2.0]}},
          {"box": {"id": "obj-9", "maxclass": "message", "text": "  append  $1 , \\, \"x\" ;\rfoo bar"}},
          {"box": {"id": "obj-1", "maxclass": "newobj", "text": "route  \"a b\" 1 1. @unknown 2"}},
          {"box": {"id": "obj-4", "maxclass": "nothing.like.it", "numoutlets": 2, "patcher": {"boxes": [5]}}}],
        "lines": [{"patchline": {"order": 3, "source": ["obj-3", 0], "destination": ["obj-9", 1], "midpoints": [1.5]}},
          {"more": 1, "patchline": {"source": ["obj-4", 1], "destination": ["obj-9", 0]}}],
        "dependency_cache": [{"name": "x"}]}, "after": {}})");
}

TEST_F(PatcherFileTest, KeepsPatchersInBoxes) {
    expect_same(R"({"patcher": {"boxes": [{"box": {"id": "obj-1", "maxclass": "newobj", "text": "p one", "patcher": {
        "key": 1, "boxes": [{"box": {"id": "obj-1", "maxclass": "newobj", "text": "patcher two", "patcher": {
            "boxes": [{"box": {"id": "obj-1", "maxclass": "keeper", "words": [1]  , "keep": 1}}], "lines": []}}}],
        "lines": [], "last": null}}}], "lines": []}})");
    EXPECT_NE(box_named(patcher, gensym("obj-1::obj-1::obj-1")), nullptr);
}

TEST_F(PatcherFileTest, KeepsWhatIsWrong) {
    expect_same(R"({"patcher": {"boxes": [5, {"box": []}, {"bix": {}}, {"box": {"id": "a", "maxclass": 5}},
        {"box": {"id": "a", "maxclass": "button"}}, {"box": {"maxclass": "button", "patching_rect": "wide"}},
        {"box": {"id": "m", "maxclass": "message", "text": 5}}, {"box": {"id": "c", "maxclass": "comment", "text": {}}}],
        "lines": [null, {"patchline": {"source": ["a", 9], "destination": ["b", 0]}}]}})");
    expect_same(R"({"patcher": {"boxes": {"a": 1}, "lines": null}})");
    expect_same(R"({"patcher": {}})");
}

TEST_F(PatcherFileTest, MarksNothingChanged) {
    open(file_of(R"({"box": {"id": "a", "maxclass": "newobj", "text": "loadbang"}},
        {"box": {"id": "b", "maxclass": "keeper", "keep": 1, "words": ["x"]}})"));
    EXPECT_FALSE(is_dirty(patcher));
    jpatcher_set_dirty(patcher, 1);
    saved_text();
    EXPECT_FALSE(is_dirty(patcher));
}

// ---- what was edited

TEST_F(PatcherFileTest, SavesEditedAttributes) {
    open(file_of(R"({"box": {"color": [1, 0], "id": "a", "maxclass": "keeper", "patching_rect": [1, 2, 3, 4]}})"));
    write_attribute(named("a"), gensym("color"), parse_atoms("0.5 0.25"));
    write_attribute(named("a"), gensym("fontsize"), parse_atoms("20"));
    EXPECT_EQ(saved()["patcher"]["boxes"][0]["box"].dump(),
              R"({"color":[0.5,0.25],"fontsize":20.0,"id":"a","maxclass":"keeper","patching_rect":[1,2,3,4]})");
    write_attribute(named("a"), gensym("fontsize"), parse_atoms("12"));
    EXPECT_EQ(saved_member("a", "fontsize"), 12.0);
}

TEST_F(PatcherFileTest, SavesAttributesOfObjectBoxesApart) {
    open(file_of(R"({"box": {"id": "a", "maxclass": "newobj", "text": "keeper @keep 1",
        "saved_object_attributes": {"other": 1}}}, {"box": {"id": "b", "maxclass": "newobj", "text": "keeper @keep 1"}})"));
    write_attribute(named("a"), gensym("keep"), parse_atoms("2"));
    write_attribute(named("b"), gensym("patching_rect"), parse_atoms("1 2 3 4"));
    EXPECT_EQ(saved_member("a", "saved_object_attributes").dump(), R"({"keep":2,"other":1})");
    EXPECT_EQ(saved_member("a", "keep"), "no such key");
    EXPECT_EQ(saved_member("b", "patching_rect").dump(), "[1.0,2.0,3.0,4.0]");
}

TEST_F(PatcherFileTest, SavesWhatABoxBringsAndNoMoreWhatItDoesNot) {
    open(file_of(R"({"box": {"id": "a", "maxclass": "keeper", "keep": 1, "words": ["x", 1], "other": ["y"]}})"));
    sent("a", "words \"12\" 12 12. \"a,b\" \"\"");
    EXPECT_EQ(saved_member("a", "words").dump(), R"(["12",12,12.0,"a,b",""])");
    sent("a", "words");
    EXPECT_EQ(saved_member("a", "words").dump(), "[]");
    write_attribute(named("a"), gensym("keep"), parse_atoms("0"));
    EXPECT_EQ(saved_member("a", "words"), "no such key");
    EXPECT_EQ(saved_member("a", "other").dump(), R"(["y"])");
    write_attribute(named("a"), gensym("keep"), parse_atoms("1"));
    sent("a", "words one");
    EXPECT_EQ(saved_member("a", "words").dump(), R"("one")");
}

TEST_F(PatcherFileTest, SavesTextsThatAreSet) {
    open(file_of(R"({"box": {"id": "m", "maxclass": "message", "text": "one"}},
        {"box": {"id": "f", "maxclass": "textedit", "text": "two"}},
        {"box": {"id": "c", "maxclass": "comment", "text": "three"}})"));
    sent("m", "set 1 \"a, b\" \"line\\nfeed\"");
    sent("f", "set typed");
    sent("c", "set read");
    EXPECT_EQ(saved_member("m", "text"), R"(1 "a, b" linenfeed)");
    EXPECT_EQ(saved_member("f", "text"), "typed");
    EXPECT_EQ(saved_member("c", "text"), "read");
}

TEST_F(PatcherFileTest, SavesBoxesAndCordsThatComeAndGo) {
    open(file_of(R"({"box": {"id": "obj-1", "maxclass": "button"}}, {"box": {"id": "obj-7", "maxclass": "button"}}, 5,
        {"box": {"id": "obj-3", "maxclass": "button"}})",
                 R"({"patchline": {"source": ["obj-1", 0], "destination": ["obj-7", 0]}},
        {"patchline": {"source": ["obj-1", 0], "destination": ["obj-3", 0]}})"));
    free_box(named("obj-7"));
    box("new", "pack 0 \"a b\"");
    cord("new", 0, "obj-1");
    cord("obj-1", 0, "new", 1);
    const Json file = saved()["patcher"];
    EXPECT_EQ(file["boxes"].size(), 4u);
    EXPECT_EQ(file["boxes"][1], 5);
    EXPECT_EQ(file["boxes"][3].dump(),
              R"({"box":{"id":"obj-8","maxclass":"newobj","numinlets":2,"numoutlets":1,"outlettype":[""],)"
              R"("patching_rect":[0.0,0.0,0.0,0.0],"text":"pack 0 \"a b\"","varname":"new"}})");
    EXPECT_EQ(file["lines"].dump(), R"([{"patchline":{"source":["obj-1",0],"destination":["obj-3",0],"order":0}},)"
                                    R"({"patchline":{"destination":["obj-8",1],"order":1,"source":["obj-1",0]}},)"
                                    R"({"patchline":{"destination":["obj-1",0],"source":["obj-8",0]}}])");
    open(saved_text());
    EXPECT_EQ(sent("obj-1", "bang"), (Lines{"obj-1:0 bang", "obj-3:0 bang"}));
    EXPECT_EQ(saved()["patcher"], file);
}

TEST_F(PatcherFileTest, SavesAnUntitledPatcher) {
    box("a", "keeper @keep 1");
    box("b", "toggle");
    cord("a", 0, "b");
    sent("a", "words one two");
    open(saved_text());
    EXPECT_EQ(take_lines(), Lines{});
    EXPECT_EQ(class_of_box(named("b")), gensym("toggle"));
    for (const char *key : {"fileversion", "rect", "default_fontname", "gridsize", "boxes", "lines"})
        EXPECT_TRUE(saved()["patcher"].contains(key)) << key;
    EXPECT_EQ(saved()["patcher"]["boxes"][0]["box"]["words"].dump(), R"(["one","two"])");
}

TEST_F(PatcherFileTest, TellsOfTextsThatAreNotUtf8) {
    box("a", "keeper @keep 1");
    sent("a", "words \xff");
    take_lines();
    EXPECT_EQ(saved_member("obj-1", "words"), "\xEF\xBF\xBD");
    EXPECT_EQ(take_lines(), Lines{"warn: -: what is not UTF-8 is saved with replacement characters"});
}

TEST_F(PatcherFileTest, NumbersThatJsonCannotHoldComeAsClose) {
    t_object *keeper = box("a", "keeper @keep 1");
    std::vector<t_atom> message = parse_atoms("words 0. 0. 0.");
    atom_setfloat(&message[1], HUGE_VAL);
    atom_setfloat(&message[2], -HUGE_VAL);
    atom_setfloat(&message[3], NAN);
    send_message(keeper, message);
    EXPECT_EQ(saved_member("obj-1", "words"), Json({DBL_MAX, -DBL_MAX, 0.0}));
}

// ---- writing the file

TEST_F(PatcherFileTest, AFailedSaveLeavesTheFile) {
    std::string reason;
    box("a", "button");
    std::filesystem::create_directory("folder");
    EXPECT_FALSE(save_patcher(patcher, folder() + "/folder", reason));
    EXPECT_EQ(reason, "Is a directory");
    EXPECT_FALSE(save_patcher(patcher, folder() + "/missing/file", reason));
    EXPECT_FALSE(save_patcher(patcher, folder() + "/", reason));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
}

TEST_F(PatcherFileTest, KeepsPermissionsAndFollowsLinks) {
    std::string reason;
    const std::string target = write_file("target.maxpat", "old");
    chmod(target.c_str(), 0640);
    std::filesystem::create_symlink("target.maxpat", "link.maxpat");
    ASSERT_TRUE(save_patcher(patcher, folder() + "/link.maxpat", reason)) << reason;
    EXPECT_TRUE(std::filesystem::is_symlink("link.maxpat"));
    EXPECT_NE(read_file(target), "old");
    struct stat status;
    stat(target.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST_F(PatcherFileTest, BareNamesAreFoundInTheSearchPathAndWrittenBesideThePatcher) {
    std::filesystem::create_directory("patches");
    std::filesystem::create_directory("searched");
    write_file("patches/main.maxpat", file_of(""));
    write_file("searched/found.maxpat", file_of(""));
    std::string reason;
    free_patcher(patcher);
    set_search_folders({folder() + "/searched"});
    patcher = open_patcher("./patches/main.maxpat", reason);
    ASSERT_NE(patcher, nullptr) << reason;
    EXPECT_TRUE(save_patcher(patcher, "copy.maxpat", reason));
    EXPECT_TRUE(std::filesystem::exists("patches/copy.maxpat"));
    free_patcher(patcher);
    patcher = open_patcher("found.maxpat", reason);
    EXPECT_NE(patcher, nullptr) << reason;
    EXPECT_EQ(open_patcher("missing.maxpat", reason), nullptr);
    EXPECT_EQ(reason, "not found");
}

// ---- files that are no patchers

TEST_F(PatcherFileTest, RefusesWhatIsNoPatcher) {
    EXPECT_EQ(refusal(""),
              "line 1, column 1: syntax error while parsing value - unexpected end of input; expected '[', "
              "'{', or a literal");
    EXPECT_EQ(refusal("{\"patcher\": {\n  \"boxes\": [}"),
              "line 2, column 13: syntax error while parsing value - unexpected '}'; expected '[', '{', or a literal");
    for (const char *other : {"{}", "[]", "5", "\"patcher\"", "{\"patcher\": []}", "{\"patcher\": null}"})
        EXPECT_EQ(refusal(other), "no patcher: no object \"patcher\" is in it") << other;
    EXPECT_EQ(refusal("{\"patcher\": {\"a\": 1e999}}"), "line 1, column 23: number overflow parsing '1e999'");
    EXPECT_NE(refusal("{\"patcher\": {\"a\": \"\xff\"}}").find("ill-formed UTF-8 byte"), std::string::npos);
    EXPECT_EQ(refusal("hello"), "line 1, column 1: syntax error while parsing value - invalid literal; last read: 'h'");
}

TEST_F(PatcherFileTest, RefusesEveryTruncation) {
    const std::string whole = file_of(R"({"box": {"id": "a", "maxclass": "message", "text": "\u00e4\n"}})");
    for (size_t length = 0; length < whole.size() - 1; ++length) {
        const std::string reason = refusal(whole.substr(0, length));
        EXPECT_TRUE(reason.starts_with("line 1, column ")) << length << ": " << reason;
    }
}

TEST_F(PatcherFileTest, BoundsNesting) {
    const auto nested = [](size_t depth) {
        return "{\"patcher\": " + std::string(depth, '[') + std::string(depth, ']') + "}";
    };
    EXPECT_EQ(refusal(nested(511)), "no patcher: no object \"patcher\" is in it");
    EXPECT_EQ(refusal(nested(512)), "nested more than 512 deep");
    EXPECT_EQ(refusal(nested(1'000'000)), "nested more than 512 deep");
    std::string patchers = file_of("");
    for (int i = 0; i < 126; ++i)
        patchers = file_of(R"({"box": {"id": "a", "maxclass": "newobj", "text": "p", "patcher": )" +
                           Json::parse(patchers)["patcher"].dump() + "}}");
    expect_same(patchers);
}

TEST_F(PatcherFileTest, ReadsAnObjectOfManyKeys) {
    std::string text = "{\"patcher\": {\"boxes\": [{\"box\": {\"id\": \"a\", \"maxclass\": \"button\"";
    for (int i = 0; i < 20000; ++i)
        text += ", \"key" + std::to_string(i) + "\": " + std::to_string(i);
    expect_same(text + "}}]}}");
}

// ---- what is wrong in a patcher

TEST_F(PatcherFileTest, TellsOfClassesThatItDoesNotKnowOnce) {
    EXPECT_EQ(complaints(R"({"box": {"id": "a", "maxclass": "strange", "numoutlets": 1}},
        {"box": {"id": "b", "maxclass": "strange"}},
        {"box": {"id": "c", "maxclass": "newobj", "text": "js some.js"}})"),
              (Lines{"warn: a: test.maxpat: unknown class \"strange\": its boxes are kept and do nothing",
                     "warn: c: test.maxpat: unknown class \"js\": its boxes are kept and do nothing"}));
    EXPECT_EQ(sent("a", "anything goes"), Lines{});
    EXPECT_EQ(outlets_of(named("a")), 1);
}

TEST_F(PatcherFileTest, TellsWhatIsWrongAndWhere) {
    const std::string start = "warn: -: test.maxpat: patcher.";
    EXPECT_EQ(
        complaints(R"(5, {"box": 5}, {"box": {"id": "a", "maxclass": 5}}, {"box": {"id": "a", "maxclass": "button"}},
        {"box": {"id": "b", "maxclass": "newobj"}}, {"box": {"id": "c", "maxclass": "newobj", "text": "p", "patcher": 5}})",
                   R"(5, {"patchline": {}}, {"patchline": {"source": ["z", 0], "destination": ["a", 0]}},
        {"patchline": {"source": ["c", 0], "destination": ["a", 0]}},
        {"patchline": {"source": ["b", 0], "destination": ["c", 0]}},
        {"patchline": {"source": ["b", "0"], "destination": ["c", 0]}})"),
        (Lines{start + "boxes[0]: no object \"box\" is here", start + "boxes[1]: no object \"box\" is here",
               start + "boxes[2].box.maxclass: a text belongs here, not a number",
               "warn: a: test.maxpat: unknown class \"\": its boxes are kept and do nothing",
               start + "boxes[3].box.id: another box has the id \"a\" already",
               start + "boxes[4].box.text: a text belongs here, not nothing",
               start + "boxes[5].box.patcher: an object belongs here, not a number",
               start + "lines[0]: no object \"patchline\" is here",
               start + "lines[1].patchline.source: the id of a box and a number belong here",
               start + "lines[2].patchline.source: no box has the id \"z\"",
               start + "lines[3].patchline.source: the box has no outlet 0",
               start + "lines[4].patchline.source: the box has no outlet 0",
               start + "lines[5].patchline.source: the id of a box and a number belong here"}));
}

TEST_F(PatcherFileTest, GivesABoxWithATakenIdANewOne) {
    open(file_of(R"({"box": {"id": "obj-1", "maxclass": "button"}}, {"box": {"id": "obj-1", "maxclass": "toggle"}},
        {"box": {"maxclass": "number"}}, {"box": {"id": "obj-2", "maxclass": "flonum"}})"));
    EXPECT_EQ(class_of_box(named("obj-1")), gensym("button"));
    EXPECT_EQ(class_of_box(named("obj-3")), gensym("toggle"));
    EXPECT_EQ(class_of_box(named("obj-4")), gensym("number"));
    cord("obj-3", 0, "obj-4");
    open(saved_text());
    EXPECT_EQ(class_of_box(named("obj-3")), gensym("toggle"));
    EXPECT_EQ(sent("obj-3", "1").back(), "obj-4:0 int 1");
}

TEST_F(PatcherFileTest, SurvivesOddNumbers) {
    open(file_of(R"({"box": {"id": "a", "maxclass": "odd", "numinlets": -5, "numoutlets": 1e300}},
        {"box": {"id": "b", "maxclass": "newobj", "text": "counter 9223372036854775807 -9223372036854775808 1e300"}},
        {"box": {"id": "c", "maxclass": "number", "minimum": 5, "maximum": -5, "patching_rect": [1e308, -1e308]}},
        {"box": {"id": "d", "maxclass": "newobj", "text": "metro -1e300"}})",
                 R"({"patchline": {"source": ["a", 18446744073709551615], "destination": ["b", -9223372036854775808],
        "order": 1e300}})"));
    EXPECT_EQ(outlets_of(named("a")), 1024);
    EXPECT_EQ(inlets_of(named("a")), 0);
    sent("b", "bang, bang, bang, jam -9223372036854775808, bang, down, bang, updown, bang, bang");
    sent("c", "0");
    sent("d", "1, 0");
}

// ---- opening and what follows

TEST_F(PatcherFileTest, BangsWhenEverythingIsThere) {
    open(file_of(R"({"box": {"id": "l", "maxclass": "newobj", "text": "loadbang"}},
        {"box": {"id": "s", "maxclass": "newobj", "text": "p", "patcher": {"boxes": [
            {"box": {"id": "inner", "maxclass": "newobj", "text": "loadbang"}}]}}},
        {"box": {"id": "m", "maxclass": "message", "text": "$1"}})",
                 R"({"patchline": {"source": ["l", 0], "destination": ["m", 0]}})"));
    EXPECT_EQ(take_lines(), (Lines{"inner:0 bang", "l:0 bang", "m:0 int 0"}));
}

TEST_F(PatcherFileTest, ClosesManyBoxesThatAreJoinedInEveryWay) {
    std::string boxes = R"({"box": {"id": "hub", "maxclass": "button"}})", cords;
    for (int i = 0; i < 3000; ++i) {
        const std::string id = "\"b" + std::to_string(i) + "\"";
        boxes += R"(, {"box": {"id": )" + id + R"(, "maxclass": "newobj", "text": "print"}})";
        cords +=
            std::string(i ? ", " : "") + R"({"patchline": {"source": ["hub", 0], "destination": [)" + id + ", 0]}}";
    }
    open(file_of(boxes, cords));
    EXPECT_EQ(sent("hub", "bang").size(), 3001u);
    free_box(named("hub"));
    EXPECT_EQ(saved()["patcher"]["lines"].size(), 0u);
}
