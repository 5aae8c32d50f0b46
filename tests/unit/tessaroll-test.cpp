// The list box as a host sees it: its class, making and freeing it, notifications, clicks.
#include <dlfcn.h>

#include <filesystem>

#include "ext.h"
#include "kernel/attributes.h"
#include "kernel/classes.h"
#include "support/failing-allocations.h"
#include "support/tessaroll-test.h"

using namespace maxhost;

// ---- the class

TEST_F(TessarollTest, TheModuleHasBothEntryFunctions) {
    void *module = dlopen(VRK_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(module, nullptr);
    EXPECT_NE(dlsym(module, "ext_main"), nullptr) << "for hosts since 6.1.9";
    EXPECT_NE(dlsym(module, "main"), nullptr) << "for older ones";
    dlclose(module);
}

TEST_F(TessarollTest, TheClassIsABoxMadeFromADictionary) {
    const Class &cls = class_of(make());
    EXPECT_EQ(cls.name, gensym("vrk.tessaroll"));
    EXPECT_EQ(cls.name_space, gensym("box"));
    EXPECT_TRUE(cls.is_box);
    EXPECT_EQ(cls.c_flags, CLASS_FLAG_NEWDICTIONARY);
}

TEST_F(TessarollTest, AnAliasNamesTheSameClass) {
    const OwnedDictionary dictionary = empty_dictionary();
    t_object *box = new_box(patcher, gensym("tessaroll"), dictionary.get());
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(&class_of(box), &class_of(make()));
}

TEST_F(TessarollTest, MethodsStandInTheirOrderWithTheirCodes) {
    Lines methods;
    for (const Method &found : class_of(make()).methods) {
        methods.emplace_back(found.name->s_name);
        for (const short code : found.codes)
            methods.back() += " " + std::to_string(code);
    }
    EXPECT_EQ(methods, (Lines{"stdargs 9",
                              "custompaintcell 9",
                              "newpatcherview 9",
                              "freepatcherview 9",
                              "selected 9",
                              "notify 9",
                              "assist 9",
                              "jsave 9",
                              "bang",
                              "int 1",
                              "set 1",
                              "append 3",
                              "insert 1 3",
                              "replace 1 3",
                              "delete 1",
                              "read 3",
                              "write 8",
                              "next",
                              "previous",
                              "home",
                              "end",
                              "length",
                              "dump",
                              "erase",
                              "clear",
                              "restore 1 1",
                              "restoreitem 3",
                              "restoreitems 8",
                              "done"}));
}

TEST_F(TessarollTest, AttributesStandInTheirOrderWithTheirOwnAttributes) {
    Lines attributes;
    for (const Attribute *found : class_of(make()).attributes) {
        attributes.push_back(std::string(found->name->s_name) + " " + found->type->s_name + " " +
                             std::to_string(found->count));
        for (const auto &[name, atoms] : found->attributes)
            attributes.back() += std::string(", ") + name->s_name + " " + print_atoms(atoms);
    }
    const Lines own(attributes.begin() + 3, attributes.end());
    EXPECT_EQ(own, (Lines{"cellh long 1, save 1, paint 1", "cellv long 1, save 1, paint 1",
                          "frame long 1, save 1, paint 1", "embed char 1, save 1, style onoff",
                          "selectcolor float64 4, paint 1, save 1, style rgba, category Color",
                          "root symbol 1, save 1, category Resourcefile, default resourcefile",
                          "xmlpath symbol 2, save 1, category Resourcefile, default resource string"}));
    EXPECT_EQ(attributes[0], "patching_rect float64 4, save 1, default 0. 0. 120. 90.");
}

TEST_F(TessarollTest, NothingOfTheBoxIsForPresets) {
    t_object *box = make_with({"a"});
    send(box, "bang");
    take_lines();
    EXPECT_FALSE(recall_preset(box));
    send(box, "preset");
    EXPECT_EQ(take_lines(), (Lines{"error: obj-1: doesn't understand \"preset\""}));
}

TEST_F(TessarollTest, WhatTheHostCallsIsNoMessage) {
    t_object *box = make();
    for (const char *name : {"stdargs", "custompaintcell", "newpatcherview", "freepatcherview", "selected", "notify",
                             "assist", "jsave", "doappend", "doread", "sendout"}) {
        send(box, name);
        EXPECT_EQ(take_lines(), (Lines{std::string("error: obj-1: doesn't understand \"") + name + "\""}));
    }
}

// ---- making a box

TEST_F(TessarollTest, ANewBoxIsEmptyAndHasTheDefaults) {
    t_object *box = make();
    drain_queue();
    EXPECT_EQ(items(box), no_lines);
    EXPECT_EQ(attribute(box, "cellh"), "0");
    EXPECT_EQ(attribute(box, "cellv"), "0");
    EXPECT_EQ(attribute(box, "frame"), "1");
    EXPECT_EQ(attribute(box, "embed"), "0");
    EXPECT_EQ(attribute(box, "selectcolor"), "0.05 0.91 0.91 0.3");
    EXPECT_EQ(attribute(box, "root"), "resourcefile");
    EXPECT_EQ(attribute(box, "xmlpath"), "resource string");
    EXPECT_EQ(attribute(box, "patching_rect"), "0. 0. 120. 90.");
    EXPECT_EQ(view(box).rows, 0);
    EXPECT_EQ(view(box).column_width, 104);
    EXPECT_EQ(view(box).border, 1);
    EXPECT_FALSE(is_dirty(patcher));
}

TEST_F(TessarollTest, ADocumentHolderStartsWithAnotherTypeThanTheClassDeclares) {
    EXPECT_EQ(attribute(make({{"xmlpath", "book"}}), "xmlpath"), "book long");
}

TEST_F(TessarollTest, WithoutADictionaryThereIsNoBox) {
    using Constructor = t_object *(*)(t_symbol *, long, t_atom *);
    const auto construct = reinterpret_cast<Constructor>(class_of(make()).construct);
    t_atom no_dictionary;
    atom_setsym(&no_dictionary, gensym("restoreitems"));
    t_object *before = bound();
    EXPECT_EQ(construct(gensym("vrk.tessaroll"), 0, nullptr), nullptr);
    EXPECT_EQ(construct(gensym("vrk.tessaroll"), 1, &no_dictionary), nullptr);
    EXPECT_EQ(bound(), before);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(TessarollTest, TheViewIsMadeForTheFontAndWidthOfTheBox) {
    t_object *box = make({{"fontsize", "9."}, {"fontname", "Times"}, {"patching_rect", "10. 20. 216. 90."}});
    EXPECT_EQ(view(box).row_height, 10);
    EXPECT_EQ(view(box).column_width, 200);
    EXPECT_STREQ(view(box).font_name->s_name, "Times");
}

TEST_F(TessarollTest, SavedAttributesAreAppliedAfterTheViewIsMade) {
    t_object *box = make({{"frame", "3"}, {"selectcolor", "1. 0. 0. 0.5"}, {"cellh", "30"}});
    EXPECT_EQ(attribute(box, "frame"), "3");
    EXPECT_EQ(view(box).border, 1) << "a saved frame does not reach the view";
    EXPECT_EQ(attribute(box, "selectcolor"), "1. 0. 0. 0.5");
    EXPECT_EQ(attribute(box, "cellh"), "30");
}

TEST_F(TessarollTest, TheRestoringIsQueuedBeforeTheViewIsMade) {
    trace_calls(trace_view | trace_queue);
    make({{"restoreitems", "a b"}});
    const Lines calls = take_lines();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls[0], "trace: defer_low restoreitems 2");
    EXPECT_EQ(calls[1], "trace: jdataview_new");
    EXPECT_EQ(calls[2], "trace: jdataview_setclient obj-1");
    EXPECT_EQ(calls.back(), "trace: jcolumn_setcustompaint custompaintcell") << "nothing is redrawn while it is made";
}

TEST_F(TessarollTest, OutletsCarryNumberCountAndText) {
    t_object *box = make_with({"a", "b b", "c"});
    send(box, "set 2");
    send(box, "bang");
    EXPECT_EQ(take_lines(), (Lines{"obj-1:2 b b", "obj-1:1 int 3", "obj-1:0 int 2"}));
    t_object *receiver = make();
    EXPECT_TRUE(connect_boxes(box, 2, receiver));
    EXPECT_FALSE(connect_boxes(box, 3, receiver)) << "there are three outlets";
}

// ---- "#X"

TEST_F(TessarollTest, TheNewestBoxIsBoundUntilItIsDone) {
    t_object *first = make();
    EXPECT_EQ(bound(), first);
    t_object *second = make();
    EXPECT_EQ(bound(), second);
    EXPECT_TRUE(send_to_receiver(gensym("#X"), parse_atoms("done")));
    EXPECT_EQ(bound(), nullptr);
    EXPECT_FALSE(send_to_receiver(gensym("#X"), parse_atoms("done")));
}

TEST_F(TessarollTest, DoneUnbindsWhoeverIsBound) {
    t_object *first = make();
    make();
    send(first, "done");
    EXPECT_EQ(bound(), nullptr);
}

TEST_F(TessarollTest, ABoxWithSavedItemsIsNotBound) {
    make();
    make({{"restoreitems", "a"}});
    EXPECT_EQ(bound(), nullptr) << "it takes the binding over and gives it up";
    make({{"restoreitems", ""}});
    EXPECT_EQ(bound(), nullptr) << "also when nothing is in them";
}

TEST_F(TessarollTest, FreeingABoxLeavesTheBindingAlone) {
    t_object *box = make();
    free_box(box);
    EXPECT_EQ(bound(), box);
    EXPECT_FALSE(send_to_receiver(gensym("#X"), parse_atoms("restoreitem a"))) << "nobody is there any more";
    EXPECT_NE(make(), nullptr);
}

TEST_F(TessarollTest, AnOldPatcherBuildsItsBoxThroughTheBinding) {
    const OwnedDictionary dictionary = empty_dictionary();
    add_old_arguments(gensym("vrk.tessaroll"), dictionary.get(), parse_atoms("10 20 200 100 30 16"));
    t_object *box = make(dictionary);
    for (const char *message : {"restore 9 20", "restoreitem one", "restoreitems two \"three 3\"", "done"})
        EXPECT_TRUE(send_to_receiver(gensym("#X"), parse_atoms(message))) << message;
    drain_queue();
    EXPECT_EQ(items(box), (Lines{"one", "two", "three 3"}));
    EXPECT_EQ(attribute(box, "patching_rect"), "10. 20. 200. 100.");
    EXPECT_EQ(attribute(box, "cellh"), "185");
    EXPECT_EQ(attribute(box, "cellv"), "16");
    EXPECT_EQ(attribute(box, "fontsize"), "9.");
    EXPECT_EQ(attribute(box, "fontname"), "Times");
    EXPECT_EQ(bound(), nullptr);
}

// ---- old argument lists

TEST_F(TessarollTest, OldArgumentsBecomeEntriesOfTheDictionary) {
    make(); // so that the class is there
    const struct {
        const char *arguments;
        const char *entries;
    } cases[] = {
        {"10 20 200 100 30 16", "patching_rect 10 20 200 100; cellh 185; cellv 16"}, // as wide as the box allows
        {"10 20 200 100 300 16", "patching_rect 10 20 200 100; cellh 300; cellv 16"},
        {"10 20 200 100 185 16", "patching_rect 10 20 200 100; cellh 185; cellv 16"},
        {"10 20 200 100 184 16", "patching_rect 10 20 200 100; cellh 185; cellv 16"},
        {"0 0 0 0 -20 -1", "patching_rect 0 0 0 0; cellh -15; cellv -1"},
        {"1 2 3 4 5 6 7 eight", "patching_rect 1 2 3 4; cellh 5; cellv 6"}, // further ones are ignored
        {"1.9 2.9 3.9 4.9 5.9 6.9", "patching_rect 1 2 3 4; cellh 5; cellv 6"},
        {"0 0 -9223372036854775808 0 1 2", "patching_rect 0 0 -9223372036854775808 0; cellh 1; cellv 2"},
        {"0 0 9223372036854775807 0 1 2",
         "patching_rect 0 0 9223372036854775807 0; cellh 9223372036854775792; cellv 2"},
        {"10 20 200 100 30", ""}, // fewer than six change nothing
        {"", ""},
    };
    for (const auto &[arguments, entries] : cases) {
        const OwnedDictionary dictionary = empty_dictionary();
        add_old_arguments(gensym("vrk.tessaroll"), dictionary.get(), parse_atoms(arguments));
        EXPECT_EQ(all_entries(dictionary), entries) << arguments;
    }
}

TEST_F(TessarollTest, OldArgumentsNeedADictionaryAndAtoms) {
    using Conversion = long (*)(t_dictionary *, t_symbol *, long, t_atom *);
    const auto convert = reinterpret_cast<Conversion>(method_of(make(), "stdargs"));
    ASSERT_NE(convert, nullptr);
    const OwnedDictionary dictionary = empty_dictionary();
    std::vector<t_atom> atoms = parse_atoms("10 20 200 100 30 16");
    EXPECT_EQ(convert(nullptr, gensym("vrk.tessaroll"), 6, atoms.data()), 0);
    EXPECT_EQ(convert(dictionary.get(), gensym("vrk.tessaroll"), 6, nullptr), 0);
    EXPECT_EQ(convert(dictionary.get(), gensym("vrk.tessaroll"), 5, atoms.data()), 0);
    EXPECT_EQ(all_entries(dictionary), "");
    EXPECT_EQ(convert(dictionary.get(), gensym("vrk.tessaroll"), 6, atoms.data()), 0);
    EXPECT_NE(all_entries(dictionary), "");
}

// ---- when memory runs out

TEST_F(TessarollTest, ABoxThatCannotBeMadeLeavesNothingBehind) {
    const MemoryInUse before = memory_in_use();
    t_object *box = nullptr;
    with_each_allocation_failing(
        [&] {
            box = make({{"restoreitems", "a b"}});
        },
        [&](bool failed) {
            if (box) {
                drain_queue();
                EXPECT_EQ(items(box), (Lines{"a", "b"}));
                free_box(box);
            }
            EXPECT_TRUE(box || failed);
            drain_queue();
            EXPECT_EQ(bound(), nullptr);
            EXPECT_EQ(memory_in_use().blocks, before.blocks);
            EXPECT_EQ(memory_in_use().objects, before.objects);
            EXPECT_EQ(take_lines(), no_lines);
        });
}

TEST_F(TessarollTest, ABoxThatCouldNotBeMadeGivesTheBindingBack) {
    t_object *waiting = make();
    for (const long n : {1, 3}) { // that of the box itself, which never comes to be bound, and that of the list
        fail_nth_allocation(n);
        EXPECT_EQ(make(), nullptr);
        EXPECT_EQ(bound(), waiting) << n;
    }
    EXPECT_TRUE(send_to_receiver(gensym("#X"), parse_atoms("restoreitem a")));
    drain_queue();
    EXPECT_EQ(items(waiting), (Lines{"a"}));
}

TEST_F(TessarollTest, TheBindingIsNotGivenBackToABoxThatIsGone) {
    const auto fail_to_make = [this] {
        fail_nth_allocation(3); // that of the list
        EXPECT_EQ(make(), nullptr);
    };
    fail_to_make();
    EXPECT_EQ(bound(), nullptr) << "nothing was bound";
    free_box(make());
    fail_to_make();
    EXPECT_EQ(bound(), nullptr);
    t_object *waiting = make();
    fail_to_make();
    fail_to_make();
    EXPECT_EQ(bound(), waiting);
    free_box(waiting);
    fail_to_make();
    EXPECT_EQ(bound(), nullptr);
}

TEST_F(TessarollTest, ABoxWorksWithoutADocumentHolder) {
    write_file("list.xml", "<?xml version=\"1.0\"?><resourcefile/>");
    fail_nth_allocation(2); // that of the holder
    t_object *box = make({{"embed", "1"}});
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(attribute(box, "root"), "refused -2");
    EXPECT_EQ(attribute(box, "xmlpath"), "refused -2");
    EXPECT_EQ(set(box, "root", "book"), -2);
    EXPECT_EQ(set(box, "xmlpath", "chapter page"), -2);
    send(box, "root book");
    send(box, "xmlpath chapter page");
    EXPECT_EQ(take_lines(), (Lines{"obj-1.root refused -2", "obj-1.xmlpath refused -2"}));

    send_and_drain(box, "append a");
    send_and_drain(box, "read list.xml");
    EXPECT_EQ(take_lines(), (Lines{"error: obj-1: list.xml is not an appropriate xml file"}));
    EXPECT_EQ(items(box), (Lines{"a"}));
    send_and_drain(box, "write out.xml");
    EXPECT_NE(read_file("out.xml").find(">a<"), std::string::npos) << "writing has a holder of its own";
    const OwnedDictionary saved = saved_box(box);
    EXPECT_EQ(entry(saved, "root"), "-");
    EXPECT_EQ(entry(saved, "restoreitems"), "a");
}

TEST_F(TessarollTest, ReadingAnAttributeWithoutMemoryIsRefused) {
    t_object *box = make();
    for (const char *name : {"frame", "selectcolor", "root", "xmlpath"}) {
        fail_nth_allocation(1);
        EXPECT_EQ(attribute(box, name), "refused -4") << name;
    }
}

TEST_F(TessarollTest, TheItemsAreSavedWhateverAllocationFails) {
    t_object *box = make_with({"a", "b"});
    OwnedDictionary saved;
    with_each_allocation_failing([&] { saved = saved_box(box); },
                                 [&](bool) { EXPECT_EQ(entry(saved, "restoreitems"), "a b"); });
    EXPECT_EQ(entry(saved, "frame"), "1");
}

// ---- freeing a box

TEST_F(TessarollTest, WhatIsQueuedForABoxIsNotDoneAfterItsEnd) {
    write_file("list.xml", "<?xml version=\"1.0\"?><resourcefile/>");
    t_object *box = make({{"restoreitems", "a b"}});
    for (const char *message : {"append a", "insert 1 b", "replace 1 c", "delete 1", "read missing.xml",
                                "write out.xml", "restoreitem d", "restoreitems e f"})
        send(box, message);
    free_box(box);
    drain_queue();
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_FALSE(std::filesystem::exists("out.xml"));
}

TEST_F(TessarollTest, APatcherIsClosedWithWorkLeft) {
    t_object *box = make({{"restoreitems", "a b"}, {"embed", "1"}});
    open_patcher_view(patcher);
    send(box, "append a");
    send(box, "read list.xml");
    send(box, "delete 1");
}

TEST_F(TessarollTest, ABoxWithItemsAndADocumentIsFreed) {
    write_file("list.xml", "<?xml version=\"1.0\"?><resourcefile><resource><string number=\"0\">a</string></resource>"
                           "</resourcefile>");
    t_object *box = make();
    send_and_drain(box, "read list.xml");
    EXPECT_EQ(items(box), (Lines{"a"}));
    free_box(box);
    EXPECT_EQ(memory_in_use().objects, 0u);
}

// ---- patcher views

TEST_F(TessarollTest, TheDataViewFollowsThePatcherViews) {
    t_object *first = open_patcher_view(patcher);
    trace_calls(trace_view);
    t_object *box = make();
    EXPECT_EQ(take_lines().back(), "trace: jdataview_patchervis patcherview obj-1") << "a box in an open patcher";
    open_patcher_view(patcher);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_patchervis patcherview obj-1"})) << "a patcher that is opened";
    close_patcher_view(first);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_patcherinvis patcherview"}));
    free_box(box);
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_clear"})) << "freed while a view is open";
}

// ---- notifications

TEST_F(TessarollTest, AFontGoesToTheViewAndTheBoxIsRedrawn) {
    t_object *box = make();
    trace_calls(trace_view);
    send(box, "fontsize 12");
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_setfontsize 12.", "trace: jdataview_setheight 14", "trace: jbox_redraw"}));
    send(box, "fontname Times");
    EXPECT_EQ(take_lines(), (Lines{"trace: jdataview_setfontname Times", "trace: jbox_redraw"}));
}

TEST_F(TessarollTest, AnyOtherAttributeOnlyRedraws) {
    for (const char *embed : {"0", "1"}) {
        t_object *box = make({{"embed", embed}});
        trace_calls(trace_view | trace_dirty);
        for (const char *message : {"cellh 30", "cellv 30", "frame 3", "selectcolor 1. 0. 0. 1.", "root book",
                                    "xmlpath chapter page", "patching_rect 0. 0. 50. 50."}) {
            send(box, message);
            EXPECT_EQ(take_lines(), (Lines{"trace: jbox_redraw"})) << message << ", embed " << embed;
        }
        send(box, "embed 0");
        EXPECT_EQ(take_lines(), (Lines{"trace: jbox_redraw"}));
    }
}

TEST_F(TessarollTest, ARefusedValueIsKnownAndStillRedraws) {
    t_object *box = make();
    trace_calls(trace_view);
    send(box, "frame 2.5");
    send(box, "selectcolor 1 0 0 1");
    EXPECT_EQ(take_lines(), (Lines{"trace: jbox_redraw", "obj-1.frame refused -2", "trace: jbox_redraw",
                                   "obj-1.selectcolor refused -2"}));
    EXPECT_EQ(attribute(box, "frame"), "1");
    EXPECT_EQ(attribute(box, "selectcolor"), "0.05 0.91 0.91 0.3")
        << "four integers are refused, though the host's own setter would take them";
}

TEST_F(TessarollTest, SwitchingEmbedOnMarksThePatcherChanged) {
    t_object *box = make();
    send(box, "embed 1");
    EXPECT_TRUE(is_dirty(patcher));
    set_clean(patcher);
    send(box, "embed 0");
    EXPECT_FALSE(is_dirty(patcher));
    send(box, "embed 256"); // eight bits of it are 0
    EXPECT_FALSE(is_dirty(patcher));
    make({{"embed", "1"}});
    EXPECT_FALSE(is_dirty(patcher)) << "a box that is made with it changes nothing";
}

TEST_F(TessarollTest, OtherNotificationsAreTheHostsAlone) {
    t_object *box = make();
    trace_calls(trace_view);
    object_method(box, gensym("notify"), gensym("obj-1"), gensym("free"), box, nullptr);
    EXPECT_EQ(take_lines(), no_lines);
}

// ---- assistance

TEST_F(TessarollTest, AssistanceFollowsTheOrderOfTheOutlets) {
    t_object *box = make();
    EXPECT_EQ(assistance(box, true, 0), "read file/resource");
    EXPECT_EQ(assistance(box, true, 7), "read file/resource");
    EXPECT_EQ(assistance(box, false, 0), "itemnumber selected");
    EXPECT_EQ(assistance(box, false, 1), "number of items in response to length message");
    EXPECT_EQ(assistance(box, false, 2), "text of selected item");
    EXPECT_EQ(assistance(box, false, 3), "");
    EXPECT_EQ(assistance(box, false, -1), "");
}

// ---- attributes that live elsewhere

TEST_F(TessarollTest, RootAndXmlpathAreThoseOfTheNextRead) {
    write_file("book.xml", "<?xml version=\"1.0\"?><book><chapter><page number=\"0\">one</page>"
                           "<page number=\"1\">two</page><page number=\"2\">three</page></chapter></book>");
    t_object *box = make();
    EXPECT_EQ(set(box, "root", "book"), 0);
    EXPECT_EQ(set(box, "xmlpath", "chapter page"), 0);
    EXPECT_EQ(attribute(box, "root"), "book");
    EXPECT_EQ(attribute(box, "xmlpath"), "chapter page");
    send_and_drain(box, "read book.xml");
    EXPECT_EQ(items(box), (Lines{"one", "two", "three"}));
    send_and_drain(box, "write out.xml");
    EXPECT_EQ(read_file("out.xml"), "<?xml version=\"1.0\"?>\n<resourcefile><resource><string number=\"0\">one</string>"
                                    "<string number=\"1\">two</string><string number=\"2\">three</string></resource>"
                                    "</resourcefile>\n")
        << "a file is always written with the names of a new holder";
    EXPECT_EQ(set(box, "root", "5"), -2);
    EXPECT_EQ(attribute(box, "root"), "book");
}

TEST_F(TessarollTest, TheNamesOfTheDocumentAreReadAndSetInsideTheRegion) {
    t_object *box = make();
    trace_calls(trace_lock);
    const Lines once = {"trace: critical_enter 0", "trace: critical_exit 0"};
    attribute(box, "root");
    EXPECT_EQ(take_lines(), once);
    attribute(box, "xmlpath");
    EXPECT_EQ(take_lines(), once);
    set(box, "root", "book");
    EXPECT_EQ(take_lines(), once);
    set(box, "xmlpath", "chapter page");
    EXPECT_EQ(take_lines(), once);
}

// ---- clicks and painting

TEST_F(TessarollTest, AClickPutsOutTextAndNumber) {
    t_object *box = make_with({"one", "two", "three", "four", "five"});
    EXPECT_TRUE(click_row(box, 3));
    EXPECT_EQ(take_lines(), (Lines{"obj-1:2 three", "obj-1:0 int 3"})) << "and not how many there are";
}

TEST_F(TessarollTest, AClickOnARowThatIsGonePutsNothingOut) {
    t_object *box = make_with({"one"});
    for (const t_ptr_int row : {2, 0, -1})
        object_method(box, gensym("selected"), gensym("vrk.tessaroll"), row);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(TessarollTest, CellsArePaintedByTheBox) {
    t_object *box = make_with({"one", "two"});
    const DrawList drawn = painted_row(box, 2);
    ASSERT_EQ(drawn.size(), 2u);
    EXPECT_EQ(drawn[0].text, "two");
    EXPECT_EQ(drawn[1].kind, DrawRecord::Kind::fill);
    EXPECT_EQ(drawn[1].rect.width, 104);
    EXPECT_EQ(drawn[1].rect.height, 14);
    EXPECT_EQ(painted_row(box, 1).size(), 1u);
}

TEST_F(TessarollTest, PaintingTakesNoMemoryOfTheHost) {
    t_object *box = make_with({"one", "two", "three"});
    const MemoryInUse before = memory_in_use();
    fail_nth_allocation(1);
    for (long row = 1; row <= 3; ++row)
        EXPECT_EQ(painted_row(box, row).at(0).kind, DrawRecord::Kind::text) << row;
    EXPECT_EQ(sysmem_newptr(1), nullptr) << "the next allocation is the first one";
    const MemoryInUse after = memory_in_use();
    EXPECT_EQ(after.blocks, before.blocks);
    EXPECT_EQ(after.objects, before.objects);
}
