// The list box in its patcher: saving its items and attributes, and restoring them.
#include "support/tessaroll-test.h"

using namespace maxhost;

namespace {

Lines numbered_texts(long count) {
    Lines texts;
    for (long i = 1; i <= count; ++i)
        texts.push_back("item " + std::to_string(i));
    return texts;
}

} // namespace

// ---- saving

TEST_F(TessarollTest, SavedItemsComeBackWithTheLastOneCurrent) {
    t_object *box = make({{"embed", "1"}});
    send(box, "append", {"alpha"});
    send(box, "append", {"beta gamma"});
    drain_queue();
    send(box, "int 1");
    const OwnedDictionary saved = saved_box(box);
    EXPECT_EQ(entry(saved, "restoreitems"), "alpha \"beta gamma\"");

    t_object *again = make(saved);
    drain_queue();
    EXPECT_EQ(items(again), (Lines{"alpha", "beta gamma"}));
    send(again, "bang");
    EXPECT_EQ(take_lines(), (Lines{"obj-2:2 beta gamma", "obj-2:1 int 2", "obj-2:0 int 2"}));
    EXPECT_EQ(view(again).selected, 2);
}

TEST_F(TessarollTest, ABoxThatDoesNotEmbedSavesNoItems) {
    t_object *box = make({{"embed", "0"}});
    send_and_drain(box, "append a");
    const OwnedDictionary saved = saved_box(box);
    EXPECT_EQ(entry(saved, "restoreitems"), "-");
    t_object *again = make(saved);
    drain_queue();
    EXPECT_EQ(items(again), no_lines);
    EXPECT_EQ(bound(), again);
}

TEST_F(TessarollTest, AListWithoutDataSavesNoKey) {
    t_object *box = make({{"embed", "1"}});
    EXPECT_EQ(entry(saved_box(box), "restoreitems"), "-");
    send_and_drain(box, "append a");
    send(box, "clear");
    EXPECT_EQ(entry(saved_box(box), "restoreitems"), "-");
}

TEST_F(TessarollTest, AListWithoutRowsSavesAKeyWithoutItems) {
    write_file("none.xml", "<?xml version=\"1.0\"?><resourcefile/>");
    t_object *box = make({{"embed", "1"}});
    send_and_drain(box, "read none.xml");
    const OwnedDictionary saved = saved_box(box);
    EXPECT_EQ(entry(saved, "restoreitems"), "");
    t_object *again = make(saved);
    drain_queue();
    EXPECT_EQ(items(again), no_lines);
}

TEST_F(TessarollTest, AReadThatGaveUpSavesNoKey) {
    write_file("gap.xml", "<?xml version=\"1.0\"?><resourcefile><resource><string number=\"1\">b</string></resource>"
                          "</resourcefile>");
    t_object *box = make({{"embed", "1"}, {"restoreitems", "a"}});
    drain_queue();
    send_and_drain(box, "read gap.xml");
    EXPECT_EQ(entry(saved_box(box), "restoreitems"), "-");
}

TEST_F(TessarollTest, TextsOfEveryKindComeBack) {
    const Lines texts = {"12",          "-1.5", "1e3",  "",      " ",          ",",         ";",           "\"quoted\"",
                         "back\\slash", "$1",   "#X",   "a,b;c", "two\nlines", "tab\there", "caf\xC3\xA9", "a",
                         "a",           "{}",   "done", "null",  "append",     "\x01\x7f"};
    const OwnedDictionary saved = saved_box(make_with(texts));
    t_object *again = make(saved);
    drain_queue();
    EXPECT_EQ(items(again), texts);
}

TEST_F(TessarollTest, AttributesComeBack) {
    t_object *box = make({{"cellh", "30"},
                          {"cellv", "-16"},
                          {"frame", "-3"},
                          {"embed", "1"},
                          {"selectcolor", "1. 0. 0.25 0.5"},
                          {"root", "book"},
                          {"xmlpath", "chapter \"5\""},
                          {"fontname", "Times"},
                          {"fontsize", "9."},
                          {"patching_rect", "10. 20. 216. 90."}});
    t_object *again = make(saved_box(box));
    for (const char *name : {"cellh", "cellv", "frame", "embed", "selectcolor", "root", "xmlpath", "fontname",
                             "fontsize", "patching_rect"})
        EXPECT_EQ(attribute(again, name), attribute(box, name)) << name;
    EXPECT_EQ(attribute(again, "selectcolor"), "1. 0. 0.25 0.5");
    EXPECT_EQ(attribute(again, "xmlpath"), "chapter \"5\"");
}

TEST_F(TessarollTest, SavingIntoNothingIsNoMisuse) {
    object_method(make_with({"a"}), gensym("jsave"), nullptr);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(TessarollTest, NothingIsSavedOfNoBox) {
    const OwnedDictionary dictionary = empty_dictionary();
    const auto save = reinterpret_cast<void (*)(void *, t_dictionary *)>(method_of(make(), "jsave"));
    save(nullptr, dictionary.get());
    EXPECT_EQ(all_entries(dictionary), "");
}

TEST_F(TessarollTest, MoreItemsThanADeferredCallCarriesComeBackInOrder) {
    const Lines texts = numbered_texts(32770);
    t_object *box = make_with(texts);
    EXPECT_EQ(view(box).rows, 32770);
    const OwnedDictionary saved = saved_box(box);
    EXPECT_EQ(saved->entries[saved->index.at(gensym("restoreitems"))].second.size(), 32770u);
    EXPECT_EQ(items(box), texts);
    send(box, "length");
    EXPECT_EQ(take_lines(), (Lines{"obj-1:1 int 32770"}));
}

// ---- restoring

TEST_F(TessarollTest, TheRestoringStandsInTheQueueBeforeAnythingThatIsSent) {
    t_object *box = make({{"restoreitems", "a b"}});
    EXPECT_EQ(items(box), no_lines) << "nothing is restored while the box is made";
    drain_queue();
    EXPECT_EQ(items(box), (Lines{"a", "b"}));
}

TEST_F(TessarollTest, TheFirstAtomThatIsNoTextEndsTheRestoring) {
    t_object *box = make({{"restoreitems", "a b 3 c"}});
    drain_queue();
    EXPECT_EQ(items(box), (Lines{"a", "b"}));
    for (const char *message : {"restoreitems c d e 4 f", "restoreitems 4 f", "restoreitems 4.5", "restoreitems"})
        send_and_drain(box, message);
    EXPECT_EQ(items(box), (Lines{"a", "b", "c", "d", "e"}));
}

TEST_F(TessarollTest, WithoutAtomsNothingIsRestored) {
    t_object *box = make();
    using Restore = void (*)(t_object *, t_symbol *, long, t_atom *);
    reinterpret_cast<Restore>(method_of(box, "restoreitems"))(box, gensym("restoreitems"), 3, nullptr);
    drain_queue();
    EXPECT_EQ(items(box), no_lines);
}

TEST_F(TessarollTest, ANumberAmongTheFirstPieceEndsTheRestoringOfTheOthers) {
    std::vector<t_atom> atoms = symbols(numbered_texts(33000));
    atom_setlong(&atoms[2], 3);
    const OwnedDictionary dictionary = empty_dictionary();
    enter(dictionary.get(), "restoreitems", atoms);
    t_object *box = make(dictionary);
    drain_queue();
    EXPECT_EQ(items(box), (Lines{"item 1", "item 2"}));
}

TEST_F(TessarollTest, RestoreitemDropsATextOfMoreThan2048Bytes) {
    t_object *box = make();
    const std::string fits(2048, 'x');
    send(box, "restoreitem", {fits});
    drain_queue();
    EXPECT_EQ(items(box), (Lines{fits}));
    send(box, "restoreitem", {fits + "x"});
    drain_queue();
    EXPECT_EQ(take_lines(), (Lines{"error: obj-1: item to restore > 2048 characters"}));
    EXPECT_EQ(items(box), (Lines{fits}));
}

TEST_F(TessarollTest, RestoreitemsKeepsATextOfMoreThan2048Bytes) {
    const std::string fits(2048, 'x'), too_long(2049, 'x');
    t_object *box = make();
    send(box, "restoreitems", {"a", too_long, fits, "d", too_long});
    drain_queue();
    EXPECT_EQ(take_lines(), (Lines{"error: obj-1: item 4 to restore > 2048 characters",
                                   "error: obj-1: item 1 to restore > 2048 characters"}))
        << "the number of items left, this one among them";
    EXPECT_EQ(items(box), (Lines{"a", too_long, fits, "d", too_long}));
}

TEST_F(TessarollTest, SavedTextsOfMoreThan2048BytesAreToldAndKept) {
    const Lines texts = {"a", std::string(2049, 'x'), "c"};
    t_object *box = make_with(texts);
    EXPECT_EQ(take_lines(), (Lines{"error: obj-1: item 2 to restore > 2048 characters"}));
    EXPECT_EQ(items(box), texts);
}

TEST_F(TessarollTest, TheNumberOfItemsLeftCountsOverAllPiecesOfARestore) {
    Lines texts = numbered_texts(32770);
    for (const size_t row : {1u, 1023u, 1024u, 1025u})
        texts[row - 1] = std::string(2049, 'x');
    std::vector<t_atom> atoms = symbols(texts);
    atom_setlong(&atoms[1030], 0); // ends the restoring, so that the test is short
    const OwnedDictionary dictionary = empty_dictionary();
    enter(dictionary.get(), "restoreitems", atoms);
    t_object *box = make(dictionary);
    drain_queue();
    EXPECT_EQ(take_lines(), (Lines{"error: obj-1: item 32770 to restore > 2048 characters",
                                   "error: obj-1: item 31748 to restore > 2048 characters",
                                   "error: obj-1: item 31747 to restore > 2048 characters",
                                   "error: obj-1: item 31746 to restore > 2048 characters"}));
    EXPECT_EQ(items(box), Lines(texts.begin(), texts.begin() + 1030));
}

TEST_F(TessarollTest, RestoreSetsTheFontAndLeavesAloneWhatIsMinusOne) {
    const struct {
        const char *message;
        const char *font;
    } cases[] = {
        {"restore 9 20", "Times 9."},      {"restore 12 -1", "Times 12."},    {"restore -1 22", "Courier 12."},
        {"restore -1 -1", "Courier 12."},  {"restore 14 65556", "Times 14."}, // 16 bits of it are 20
        {"restore 14 12345", "Arial 14."}, {"restore -2 -1", "Arial 1."},     // as small as a font can be
    };
    t_object *box = make();
    for (const auto &[message, font] : cases) {
        send(box, message);
        EXPECT_EQ(attribute(box, "fontname") + " " + attribute(box, "fontsize"), font) << message;
        EXPECT_EQ(std::string(view(box).font_name->s_name) + " " + print_float(view(box).font_size), font) << message;
    }
    trace_calls(trace_view);
    send(box, "restore -1 -1");
    EXPECT_EQ(take_lines(), (Lines{"trace: jbox_redraw"}));
}

TEST_F(TessarollTest, RestoringMarksNothingChanged) {
    t_object *box = make_with({"a"});
    for (const char *message : {"restoreitem b", "restoreitems c d", "restore 12 20", "done"})
        send_and_drain(box, message);
    EXPECT_FALSE(is_dirty(patcher));
    EXPECT_EQ(items(box), (Lines{"a", "b", "c", "d"}));
}
