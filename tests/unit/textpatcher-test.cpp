// Patchers in the text form of before.
#include "ext.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

// A box of that time: its old arguments are a rectangle and a number, and it can be spoken to as #X.
struct Old {
    t_jbox box;
    long number;
};

t_class *old_class;

void *old_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = static_cast<Old *>(object_alloc(old_class));
    jbox_new(&x->box, 0, argc, argv);
    x->box.b_firstin = &x->box.b_ob;
    intout(x);
    gensym("#X")->s_thing = &x->box.b_ob;
    attr_dictionary_process(x, object_dictionaryarg(argc, argv));
    jbox_ready(&x->box);
    return x;
}

long old_stdargs(t_dictionary *dictionary, t_symbol *, long argc, t_atom *argv) {
    if (argc < 5)
        return 0;
    dictionary_appendatoms(dictionary, gensym("patching_rect"), 4, argv);
    dictionary_appendatoms(dictionary, gensym("number"), 1, argv + 4);
    return 0;
}

void old_say(Old *x, t_symbol *, long argc, t_atom *argv) {
    object_post(&x->box.b_ob, "%s", print_atoms({argv, static_cast<size_t>(argc)}).c_str());
}

void register_old() {
    old_class = class_new("old", (method)old_new, (method)jbox_free, sizeof(Old), nullptr, A_GIMME, 0);
    old_class->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    jbox_initclass(old_class, 0);
    class_addmethod(old_class, (method)old_stdargs, "stdargs", A_CANT, 0);
    class_addmethod(old_class, (method)old_say, "say", A_GIMME, 0);
    class_addattr(old_class, attr_offset_new("number", gensym("long"), 0, nullptr, nullptr, offsetof(Old, number)));
    class_attr_addattr_parse(old_class, "number", "save", gensym("long"), 0, "1");
    class_register(CLASS_BOX, old_class);
}

class TextPatcherTest : public PatchTest {
  protected:
    static void SetUpTestSuite() {
        if (!old_class)
            register_old();
    }

    // Opens records in a patcher; what the console says.
    Lines opened(const std::string &records) {
        take_lines();
        open("max v2;\n#N vpatcher 10 20 110 220;\n" + records + "#P pop;\n");
        return take_lines();
    }
};

} // namespace

TEST_F(TextPatcherTest, MakesBoxesAndCords) {
    EXPECT_EQ(opened("#P window setfont \"Sans Serif\" 9.;\n#P number 30 40 35 9 0 0 0 3;\n#P toggle 10 10 15 0;\n"
                     "#P message 50 60 70 196617 append \\$1 \\, bang;\n#P comment 1 2 100 196617 a note\\; yes;\n"
                     "#P newex 5 6 70 196617 pack 0 a\\ b;\n#P button 1 2 15 0;\n"
                     "#P connect 0 0 3 0;\n#P fasten 3 0 1 1 10 20;\n"),
              Lines{});
    EXPECT_EQ(class_of_box(named("obj-1")), gensym("number"));
    EXPECT_EQ(saved_member("obj-3", "text"), "append $1 , bang");
    EXPECT_EQ(saved_member("obj-3", "patching_rect").dump(), "[50.0,60.0,70.0,17.0]");
    EXPECT_EQ(saved_member("obj-3", "fontname"), "Geneva");
    EXPECT_EQ(saved_member("obj-3", "fontsize"), 9.0);
    EXPECT_EQ(saved_member("obj-4", "text"), "a note; yes");
    EXPECT_EQ(saved_member("obj-5", "text"), "pack 0 a\\ b");
    EXPECT_EQ(sent("obj-6", "bang"), (Lines{"obj-6:0 bang", "obj-3:0 append 0", "obj-3:0 bang"}));
    EXPECT_EQ(sent("obj-5", "bang"), Lines{"obj-5:0 list 0 append"});
}

TEST_F(TextPatcherTest, TurnsOldArgumentsAndSpeaksToTheNewestBox) {
    EXPECT_EQ(opened("#P user old 1 2 30 40 7;\n#X say \"First line\" 12 \"12\" a\\;b\\,c;\n"
                     "#P user old 1 2 30 40 8;\n#X say second;\n#X nonsense;\n"),
              (Lines{"post: obj-1: \"First line\" 12 \"12\" \"a;b,c\"", "post: obj-2: second",
                     "error: obj-2: doesn't understand \"nonsense\""}));
    EXPECT_EQ(saved_member("obj-1", "number"), 7);
    EXPECT_EQ(saved_member("obj-1", "patching_rect").dump(), "[1.0,2.0,30.0,40.0]");
    gensym("#X")->s_thing = nullptr;
}

TEST_F(TextPatcherTest, ReadsPatchersInPatchers) {
    EXPECT_EQ(opened("#N vpatcher 40 40 300 300;\n#P inlet 30 30 15 0;\n#P newex 30 60 50 9 prepend in;\n"
                     "#P outlet 30 90 15 0;\n#P connect 2 0 1 0;\n#P connect 1 0 0 0;\n#P pop;\n"
                     "#P newobj 10 10 40 196617 p inner;\n#P newex 10 90 40 196617 print;\n#P connect 1 0 0 0;\n"),
              Lines{});
    EXPECT_EQ(sent("obj-1", "5"), (Lines{"obj-1:0 int 5", "obj-2:0 in 5", "obj-1:0 in 5", "post: obj-2: in 5"}));
    EXPECT_EQ(saved_member("obj-1", "patcher")["rect"].dump(), "[40.0,40.0,260.0,260.0]");
    open(saved_text());
    EXPECT_EQ(sent("obj-1", "5").back(), "post: obj-2: in 5");
}

TEST_F(TextPatcherTest, IsSavedAsJson) {
    opened("#P user old 1 2 30 40 7;\n#P newex 1 2 30 9 print;\n#P connect 1 0 0 0;\n");
    gensym("#X")->s_thing = nullptr;
    const Json file = saved()["patcher"];
    EXPECT_EQ(file["rect"].dump(), "[10.0,20.0,100.0,200.0]");
    EXPECT_EQ(file["boxes"].size(), 2u);
    EXPECT_EQ(file["lines"].dump(), R"([{"patchline":{"destination":["obj-2",0],"source":["obj-1",0]}}])");
    open(saved_text());
    EXPECT_EQ(saved()["patcher"], file);
}

TEST_F(TextPatcherTest, LeavesOutWhatItDoesNotKnowWithAWordEach) {
    const std::string start = "warn: -: test.maxpat: line ";
    EXPECT_EQ(
        opened("#P user strange 1 2 3 4;\n#P user strange 1 2 3 4;\n#P wonder 1 2;\n#P wonder 1 2;\n#T 1;\n#T 2;\n"
               "#N coll x;\n#P button 1 2 15 0;\n#P connect 0 0 9 0;\n#P connect 0 0 2 0;\n"),
        (Lines{"warn: obj-1: test.maxpat: unknown class \"strange\": its boxes are kept and do nothing",
               start + "5: unknown record \"#P wonder\" is left out", start + "7: unknown record \"#T\" is left out",
               start + "9: unknown record \"#N coll\" is left out",
               start + "11: a cord that leads to no box, outlet or inlet is left out"}));
    EXPECT_EQ(sent("obj-3", "bang"), Lines{"obj-3:0 bang"});
    EXPECT_EQ(saved_member("obj-1", "oldarguments").dump(), "[1,2,3,4]");
}

TEST_F(TextPatcherTest, ReadsHiddenBoxesAndOldLineEnds) {
    take_lines();
    open("max v2;\r#N vpatcher 10 20 110 220;\r#P hidden button 1 2 15 0;\r#P hidden newex 1 2 15 9 print;\r"
         "#P hidden connect 1 0 0 0;\r#P pop;\r");
    EXPECT_EQ(take_lines(), Lines{});
    EXPECT_EQ(sent("obj-1", "bang"), (Lines{"obj-1:0 bang", "post: obj-2: bang"}));
}

TEST_F(TextPatcherTest, ReadsMacRoman) {
    opened("#P comment 1 2 100 9 \x8e t\x8e \xa5;\n");
    EXPECT_EQ(saved_member("obj-1", "text"), "é té •");
}

TEST_F(TextPatcherTest, EndsWhereTheTextEnds) {
    const std::string whole =
        "max v2;#N vpatcher 1 2 3 4;#N vpatcher 1 2 3 4;#P button 1 2 15 0;#P pop;#P newobj 1 2 3 9 p"
        ";#P message 1 2 3 9 a\\;\"b c\";#P pop;";
    for (size_t length = 0; length <= whole.size(); ++length)
        EXPECT_NE(refusal(whole.substr(0, length)), "") << length;
    take_lines();
    open("max v2;#N vpatcher 1 2 3 4;#P button 1 2 15 0");
    EXPECT_EQ(take_lines(), Lines{"warn: -: test.maxpat: line 1: the text ends before the patcher does"});
    EXPECT_NE(box_named(patcher, gensym("obj-1")), nullptr);
}

TEST_F(TextPatcherTest, RefusesWhatIsNoPatcher) {
    EXPECT_EQ(refusal("max v2;\n#P button 1 2 3;"), "no patcher: no record \"#N vpatcher\" is in it");
    std::string deep = "max v2;";
    for (int i = 0; i < 100000; ++i)
        deep += "#N vpatcher 1 2 3 4;";
    EXPECT_EQ(refusal(deep), "line 1: patchers nested more than 128 deep");
}

TEST_F(TextPatcherTest, ClosesAPatcherThatNoBoxTakes) {
    EXPECT_EQ(opened("#N vpatcher 1 2 3 4;\n#P button 1 2 15 0;\n#P pop;\n#N vpatcher 1 2 3 4;\n#P pop;\n"),
              (Lines{"warn: -: test.maxpat: line 7: a patcher that no box takes is left out",
                     "warn: -: test.maxpat: line 8: a patcher that no box takes is left out"}));
}
