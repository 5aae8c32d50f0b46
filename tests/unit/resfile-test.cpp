// Resource files: numbered resources, menus, opening and reading; and the helpers for paths.
#include "support/xml-test.h"

#include <filesystem>

#include <sys/stat.h>

#include "support/failing-allocations.h"
#include "vrk.pathname.h"
#include "vrk.wholefile.h"

using namespace maxhost;

namespace {

class ResourceTest : public XmlTest {
  protected:
    // The results of the operations as text: what they give, or "failed -1".
    std::string count_of(const std::string &type, char verbose = 1) {
        constexpr long untouched = -99;
        long number = untouched;
        const long result = jxmlresfile_count_resource(holder, gensym(type.c_str()), &number, verbose);
        EXPECT_TRUE(result == 0 || number == untouched);
        return result ? "failed " + std::to_string(result) : std::to_string(number);
    }
    template <typename Reader> std::string values_of(short room, const Reader &reader) {
        Atoms values(static_cast<size_t>(std::max<short>(room, 1)), symbol_atom("untouched"));
        t_atom *first = values.data();
        short number = room;
        const long result = reader(&number, &first);
        if (result)
            return "failed " + std::to_string(result);
        if (atom_gettype(first) == A_OBJ) {
            const std::string size = std::to_string(sysmem_ptrsize(atom_getobj(first)));
            sysmem_freeptr(atom_getobj(first));
            return "block of " + size;
        }
        return print_atoms(std::span(first, static_cast<size_t>(number)));
    }
    std::string resource(const std::string &type, long number, short room = 1, const char *kind = "text",
                         char verbose = 1) {
        return values_of(room, [&](short *count, t_atom **values) {
            return jxmlresfile_get_resource(holder, gensym(type.c_str()), number, gensym(kind), count, values, verbose);
        });
    }
    long set_resource(const std::string &type, long number, t_atom value, char as_cdata = 0, char verbose = 1) {
        return jxmlresfile_set_resource(holder, gensym(type.c_str()), number, &value, as_cdata, verbose);
    }
    std::string title(long menu, char verbose = 1) {
        return values_of(1, [&](short *count, t_atom **values) {
            return jxmlresfile_get_menutitle(holder, menu, gensym("text"), count, values, verbose);
        });
    }
    std::string items(long menu, char verbose = 1) {
        constexpr long untouched = -99;
        long number = untouched;
        const long result = jxmlresfile_count_menuitems(holder, menu, &number, verbose);
        EXPECT_TRUE(result == 0 || number == untouched);
        return result ? "failed " + std::to_string(result) : std::to_string(number);
    }
    std::string item(long menu, long number, char with_command = 1, short room = 1, char verbose = 1) {
        return values_of(room, [&](short *count, t_atom **values) {
            return jxmlresfile_get_menuitem(holder, menu, number, gensym("text"), count, values, with_command, verbose);
        });
    }

    void load_list() {
        load("<resourcefile>\n"
             "  <resource>\n"
             "    <string number=\"0\">First line</string>\n"
             "    <string number=\"1\">Second line</string>\n"
             "    <image number=\"0\"><![CDATA[00FF0A]]></image>\n"
             "  </resource>\n"
             "</resourcefile>");
    }
    void load_menus(const std::string &more = "") {
        load("<resourcefile><resource>"
             "<menu number=\"1\">"
             "<menu-title>Edit</menu-title>"
             "<menu-item number=\"0\">Copy</menu-item><menu-command number=\"0\">copy selection</menu-command>"
             "<menu-item number=\"1\">-</menu-item><menu-command number=\"1\">never</menu-command>"
             "<menu-item number=\"2\">Alone</menu-item>" +
             more + "</menu></resource></resourcefile>");
    }
};

using PathnameTest = XmlTest;
using WholeFileTest = XmlTest;

} // namespace

// ---- resources

TEST_F(ResourceTest, ResourcesAreCountedByType) {
    load_list();
    EXPECT_EQ(count_of("string"), "2");
    EXPECT_EQ(count_of("image"), "1");
    EXPECT_EQ(count_of("missing"), "0");
    EXPECT_EQ(count_of("types"), "1") << "the group elements";
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(ResourceTest, CountingGoesByTheElementWhateverItsNumberIs) {
    load("<resourcefile><resource><a number='7'/><a/></resource><resource><a number='7'/></resource></resourcefile>");
    EXPECT_EQ(count_of("a"), "3");
    EXPECT_EQ(count_of("types"), "2");
}

TEST_F(ResourceTest, ResourcesAreReadByNumber) {
    load_list();
    EXPECT_EQ(resource("string", 0), "\"First line\"");
    EXPECT_EQ(resource("string", 1), "\"Second line\"");
    EXPECT_EQ(resource("image", 0), "block of 3");
    EXPECT_EQ(resource("image", 0, 2), "0 -1");
    EXPECT_EQ(resource("image", 0, 9), "0 -1 10");
}

TEST_F(ResourceTest, ResourcesAreReadAsTheKindThatIsAskedFor) {
    load("<resourcefile><resource><long number='3'> 42 </long></resource></resourcefile>");
    EXPECT_EQ(resource("long", 3, 1, "int"), "42");
    EXPECT_EQ(resource("long", 3, 1, "float"), "42.");
    EXPECT_EQ(resource("long", 3), "\"42\"");
}

TEST_F(ResourceTest, BlanksAndTheLastLetterOutsideOfAsciiAreTrimmed) {
    load("<resourcefile><resource><s number='0'>  First line \n</s><s number='1'>Café</s><s number='2'/>"
         "<s number='3'> \n </s></resource></resourcefile>");
    EXPECT_EQ(resource("s", 0), "\"First line\"");
    EXPECT_EQ(resource("s", 1), "Caf");
    EXPECT_EQ(resource("s", 2), "\"\"") << "an element without children is an empty text";
    EXPECT_EQ(resource("s", 3), "\"\"");
}

TEST_F(ResourceTest, AResourceThatIsNotThereIsReportedToVerboseCallersOnly) {
    load_list();
    EXPECT_EQ(resource("string", 5, 1, "text", 0), "untouched") << "the result is 0, and nothing is written";
    EXPECT_EQ(take_lines(), Lines());
    EXPECT_EQ(resource("string", 5), "failed -1");
    EXPECT_EQ(take_lines(), (Lines{no_node, error("cannot get resource string number 5")}));
}

TEST_F(ResourceTest, ResourcesCannotBeCountedIsAlwaysReported) {
    load_list();
    holder->xmlpath[0] = gensym("a[");
    for (const char verbose : {char{0}, char{1}}) {
        EXPECT_EQ(count_of("string", verbose), "failed -1");
        EXPECT_EQ(take_lines(), (Lines{error("unable to evaluate xpath expression \"/resourcefile/a[/string\""),
                                       error("cannot count resources of type string")}));
    }
}

TEST_F(ResourceTest, MoreResourcesThanCanBeToldAreNotCounted) {
    std::string all;
    for (int i = 0; i < 32768; ++i)
        all += "<s/>";
    load("<resourcefile><resource>" + all + "</resource></resourcefile>");
    EXPECT_EQ(count_of("s"), "failed -1");
    EXPECT_EQ(take_lines(), (Lines{error("cannot count resources of type s (more than 32767)")}));
}

TEST_F(ResourceTest, AResourceIsWrittenAndMadeWhenItIsMissing) {
    load("<resourcefile><resource/></resourcefile>");
    EXPECT_EQ(set_resource("string", 2, symbol_atom("new & old")), 0);
    EXPECT_EQ(set_resource("string", 2, symbol_atom("again")), 0);
    EXPECT_EQ(set_resource("string", 0, symbol_atom("zero")), 0);
    EXPECT_EQ(document(), "<resourcefile><resource><string number=\"2\">again</string>"
                          "<string number=\"0\">zero</string></resource></resourcefile>");
    EXPECT_EQ(resource("string", 2), "again");
}

TEST_F(ResourceTest, BytesAreWrittenAsHexadecimalAndTheBlockIsTaken) {
    load("<resourcefile><resource/></resourcefile>");
    const size_t blocks = memory_in_use().blocks;
    EXPECT_EQ(set_resource("image", 0, block_atom(std::string("\0\xFF\n", 3)), 1), 0);
    EXPECT_EQ(memory_in_use().blocks, blocks);
    EXPECT_EQ(document(), "<resourcefile><resource><image number=\"0\"><![CDATA[00FF0A]]></image>"
                          "</resource></resourcefile>");
}

TEST_F(ResourceTest, AResourceThatCannotBeWrittenIsReportedToVerboseCallersOnly) {
    load("<resourcefile><resource/></resourcefile>");
    const std::string refusal = error("text cannot be held by xml (byte 1)");
    EXPECT_EQ(set_resource("string", 2, symbol_atom("\x01"), 0, 0), 0);
    EXPECT_EQ(take_lines(), (Lines{refusal}));
    EXPECT_EQ(set_resource("string", 2, symbol_atom("\x01")), -1);
    EXPECT_EQ(take_lines(), (Lines{refusal, error("cannot set resource string number 2")}));
    EXPECT_EQ(document(), "<resourcefile><resource/></resourcefile>");
}

TEST_F(ResourceTest, ABlockIsTakenAlsoWhenItIsRefused) {
    const size_t blocks = memory_in_use().blocks;
    EXPECT_EQ(set_resource("image", 0, block_atom("x"), 1), -1) << "nothing is loaded";
    load("<resourcefile><resource/></resourcefile>");
    EXPECT_EQ(set_resource("a[", 0, block_atom("x"), 1), -1);
    EXPECT_EQ(set_resource("text", 0, block_atom("x"), 1), -1);
    EXPECT_EQ(memory_in_use().blocks, blocks);
    take_lines();
}

TEST_F(ResourceTest, AWordThatEndsPathsCannotBeWrittenTo) {
    load("<resourcefile><resource>kept</resource></resourcefile>");
    for (const char *type : {"text", "cdata"}) {
        EXPECT_EQ(set_resource(type, 1, symbol_atom("x")), -1);
        EXPECT_EQ(take_lines(), (Lines{error("cannot set resource " + std::string(type) + " number 1 (\"" +
                                             std::string(type) + "\" ends a path)")}));
        EXPECT_EQ(set_resource(type, 1, symbol_atom("x"), 0, 0), 0);
        EXPECT_EQ(take_lines(), no_lines) << "a quiet caller is told nothing";
    }
    EXPECT_EQ(document(), "<resourcefile><resource>kept</resource></resourcefile>");
}

TEST_F(ResourceTest, TheHoldersNamesAreUsed) {
    load("<list><group/></list>");
    holder->root = gensym("list");
    holder->xmlpath[0] = gensym("group");
    EXPECT_EQ(set_resource("s", 0, symbol_atom("x")), 0);
    EXPECT_EQ(count_of("s"), "1");
    EXPECT_EQ(document(), "<list><group><s number=\"0\">x</s></group></list>");
}

TEST_F(ResourceTest, WhatIsMissingIsReportedInOrder) {
    const auto expect_refused = [this](const std::string &line, char verbose) {
        EXPECT_EQ(count_of("s", verbose), "failed -1");
        EXPECT_EQ(resource("s", 0, 1, "text", verbose), "failed -1");
        EXPECT_EQ(set_resource("s", 0, symbol_atom("x"), 0, verbose), -1);
        EXPECT_EQ(take_lines(), Lines(3, error(line)));
    };
    holder->xmlpath[0] = holder->root = gensym("");
    expect_refused("no xml file loaded", 0);
    holder->loaded = 1;
    expect_refused("no xml file loaded", 1);
    load("<resourcefile/>");
    expect_refused("no root tag defined", 0);
    holder->root = gensym("resourcefile");
    expect_refused("no xml path defined", 1);
    holder->xmlpath[0] = gensym("resource");
    holder->xmlpath[1] = gensym("");
    EXPECT_EQ(count_of("s"), "0") << "the second word is not looked at";
}

TEST_F(ResourceTest, WithoutAHolderThereIsNothing) {
    long number = 0;
    short room = 1;
    t_atom value = block_atom("x");
    t_atom *first = &value;
    EXPECT_EQ(jxmlresfile_count_resource(nullptr, gensym("s"), &number, 1), -1);
    EXPECT_EQ(jxmlresfile_get_resource(nullptr, gensym("s"), 0, gensym("int"), &room, &first, 1), -1);
    EXPECT_EQ(jxmlresfile_set_resource(nullptr, gensym("s"), 0, &value, 1, 1), -1);
    EXPECT_EQ(jxmlresfile_get_menutitle(nullptr, 1, gensym("int"), &room, &first, 1), -1);
    EXPECT_EQ(jxmlresfile_count_menuitems(nullptr, 1, &number, 1), -1);
    EXPECT_EQ(jxmlresfile_get_menuitem(nullptr, 1, 0, gensym("int"), &room, &first, 1, 1), -1);
    EXPECT_EQ(jxmlresfile_read(nullptr, gensym("never.xml")), nullptr);
    EXPECT_FALSE(std::filesystem::exists(path_of("never.xml")));
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(ResourceTest, WithoutAFilenameNothingIsRead) {
    EXPECT_EQ(jxmlresfile_read(holder, nullptr), nullptr);
    EXPECT_EQ(holder->doc, nullptr);
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(ResourceTest, AFileOfManyResourcesReadsBack) {
    load("<resourcefile><resource/></resourcefile>");
    for (long i = 0; i < 1000; ++i)
        ASSERT_EQ(set_resource("s", i, symbol_atom("item " + std::to_string(i))), 0);
    ASSERT_TRUE(reload());
    EXPECT_EQ(count_of("s"), "1000");
    for (long i = 999; i >= 0; --i)
        EXPECT_EQ(resource("s", i), "\"item " + std::to_string(i) + "\"");
}

// ---- menus

TEST_F(ResourceTest, AMenuHasATitle) {
    load_menus();
    EXPECT_EQ(title(1), "Edit");
}

TEST_F(ResourceTest, ItemsAreCountedWithTheirSeparators) {
    load_menus();
    EXPECT_EQ(items(1), "3");
    EXPECT_EQ(items(7), "0") << "a menu that is not there has no items";
}

TEST_F(ResourceTest, AnItemIsReadWithItsCommandOrWithout) {
    load_menus();
    EXPECT_EQ(item(1, 0), "Copy/copy") << "the first word of the command";
    EXPECT_EQ(item(1, 0, 0), "Copy");
}

TEST_F(ResourceTest, AnItemNeedsAPlaceForItsCount) {
    load_menus();
    t_atom value = symbol_atom("untouched");
    t_atom *first = &value;
    EXPECT_EQ(jxmlresfile_get_menuitem(holder, 1, 0, gensym("text"), nullptr, &first, 1, 1), -1);
    EXPECT_EQ(print_atom(value), "untouched");
    EXPECT_EQ(take_lines(), (Lines{error("cannot get menu-item 0 of long 1")}));
}

TEST_F(ResourceTest, ASeparatorHasNoCommand) {
    load_menus();
    EXPECT_EQ(item(1, 1), "-");
    EXPECT_EQ(item(1, 1, 0), "-");
}

TEST_F(ResourceTest, AnItemWithoutACommandIsItsLabel) {
    load_menus("<menu-item number=\"3\">Empty</menu-item><menu-command number=\"3\"/>"
               "<menu-item number=\"4\">Blank</menu-item><menu-command number=\"4\"> \n </menu-command>"
               "<menu-item number=\"5\">Odd</menu-item><menu-command number=\"5\"><x/></menu-command>");
    EXPECT_EQ(item(1, 2), "Alone");
    EXPECT_EQ(item(1, 3), "Empty");
    EXPECT_EQ(item(1, 4), "Blank");
    EXPECT_EQ(item(1, 5), "Odd");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(ResourceTest, OnlyTheFirstWordOfACommandCounts) {
    load_menus(
        "<menu-item number=\"3\">Paste Special</menu-item><menu-command number=\"3\">\n paste\tall</menu-command>");
    EXPECT_EQ(item(1, 3), "\"Paste Special/paste\"");
}

TEST_F(ResourceTest, RoomForMoreThanOneAtomMakesNoDifference) {
    load_menus();
    EXPECT_EQ(item(1, 0, 1, 4), "Copy/copy");
    EXPECT_EQ(item(1, 2, 1, 4), "Alone");
}

TEST_F(ResourceTest, BytesAreNoLabelAndNoCommand) {
    load_menus("<menu-item number=\"3\"><![CDATA[4142]]></menu-item>"
               "<menu-item number=\"4\">Label</menu-item><menu-command number=\"4\"><![CDATA[4142]]></menu-command>"
               "<menu-item number=\"5\"><![CDATA[]]></menu-item>");
    for (const short room : {short{1}, short{3}}) {
        EXPECT_EQ(item(1, 3, 1, room), "\"\"");
        EXPECT_EQ(item(1, 4, 1, room), "Label");
        EXPECT_EQ(item(1, 5, 1, room), "\"\"");
    }
}

TEST_F(ResourceTest, ALongLabelIsCut) {
    const std::string label(2000, 'L');
    load_menus("<menu-item number=\"3\">" + label +
               "</menu-item><menu-command number=\"3\">go</menu-command>"
               "<menu-item number=\"4\">x</menu-item><menu-command number=\"4\">" +
               label + "</menu-command>");
    EXPECT_EQ(item(1, 3), label.substr(0, 1023));
    EXPECT_EQ(item(1, 4), "x/" + label.substr(0, 1021));
}

TEST_F(ResourceTest, ALabelIsNotCutWithinACharacter) {
    const std::string label(1022, 'L');
    load_menus("<menu-item number=\"3\">" + label +
               "éx</menu-item><menu-command number=\"3\">go</menu-command>"
               "<menu-item number=\"4\">x</menu-item><menu-command number=\"4\">" +
               label.substr(2) + "日x</menu-command>");
    EXPECT_EQ(item(1, 3), label);
    EXPECT_EQ(item(1, 4), "x/" + label.substr(2));
}

TEST_F(ResourceTest, AMenuThatIsNotThereIsReportedWhateverTheCallerAsks) {
    load_menus();
    EXPECT_EQ(title(7, 0), "failed -1");
    EXPECT_EQ(item(7, 0, 1, 1, 0), "failed -1");
    EXPECT_EQ(take_lines(),
              (Lines{error("cannot get menu-title from long 7"), error("cannot get menu-item 0 of long 7")}));
    EXPECT_EQ(title(7), "failed -1");
    EXPECT_EQ(item(1, 9), "failed -1");
    EXPECT_EQ(take_lines(), (Lines{no_node, error("cannot get menu-title from long 7"), no_node,
                                   error("cannot get menu-item 9 of long 1")}));
}

TEST_F(ResourceTest, ItemsThatCannotBeCountedAreReportedWithTheMenusNumber) {
    load_menus();
    holder->xmlpath[0] = gensym("a[");
    for (const long menu : {7L, -12L}) {
        EXPECT_EQ(items(menu, 0), "failed -1");
        const std::string number = std::to_string(menu);
        EXPECT_EQ(take_lines(), (Lines{error("unable to evaluate xpath expression \"/resourcefile/a[/menu[@number=" +
                                             number + "]/menu-item\""),
                                       error("cannot count menu-items of long " + number)}));
    }
}

TEST_F(ResourceTest, MoreItemsThanCanBeToldAreNotCounted) {
    std::string all;
    for (int i = 0; i < 32768; ++i)
        all += "<menu-item/>";
    load("<resourcefile><resource><menu number='1'>" + all + "</menu></resource></resourcefile>");
    EXPECT_EQ(items(1, 0), "failed -1");
    EXPECT_EQ(take_lines(), (Lines{error("cannot count menu-items of long 1 (more than 32767)")}));
}

TEST_F(ResourceTest, MenusAskForBothWordsOfThePath) {
    const auto expect_refused = [this](const std::string &line) {
        EXPECT_EQ(title(1, 0), "failed -1");
        EXPECT_EQ(items(1, 0), "failed -1");
        EXPECT_EQ(item(1, 0, 1, 1, 0), "failed -1");
        EXPECT_EQ(take_lines(), Lines(3, error(line)));
    };
    holder->root = holder->xmlpath[0] = holder->xmlpath[1] = gensym("");
    expect_refused("no xml file loaded");
    load_menus();
    expect_refused("no root tag defined");
    holder->root = gensym("resourcefile");
    expect_refused("no xml path defined");
    holder->xmlpath[0] = gensym("resource");
    expect_refused("no xml path defined");
    holder->xmlpath[1] = gensym("anything");
    EXPECT_EQ(title(1), "Edit");
}

// ---- opening and reading

TEST_F(ResourceTest, AFileThatIsNotThereIsMade) {
    EXPECT_EQ(jxmlresfile_read(holder, gensym("fresh.xml")), nullptr);
    EXPECT_EQ(read_file(path_of("fresh.xml")), "<?xml version=\"1.0\"?>\n<resourcefile><resource/></resourcefile>\n");
    EXPECT_EQ(holder->loaded, 0) << "a new document is not loaded";
    EXPECT_EQ(count_of("string"), "failed -1");
    EXPECT_EQ(take_lines(), Lines{error("no xml file loaded")});
    t_symbol *found = jxmlresfile_read(holder, gensym("fresh.xml"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->s_name, path_of("fresh.xml"));
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(count_of("types"), "1");
}

TEST_F(ResourceTest, NamesOutsideOfAsciiAreMadeAndReadAgain) {
    const std::string made = "<?xml version=\"1.0\"?>\n<resourcefile><resource/></resourcefile>\n";
    EXPECT_EQ(jxmlresfile_read(holder, gensym("été 日本.xml")), nullptr);
    EXPECT_EQ(read_file("été 日本.xml"), made);
    ASSERT_NE(jxmlresfile_read(holder, gensym("été 日本.xml")), nullptr);
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(ResourceTest, AFileOfTheSearchPathIsFound) {
    std::filesystem::create_directory(path_of("searched"));
    write_file("searched/list.xml", "<?xml version=\"1.0\"?>\n<resourcefile/>");
    set_search_folders({"searched"});
    t_symbol *found = jxmlresfile_read(holder, gensym("list.xml"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->s_name, path_of("searched/list.xml"));
    EXPECT_EQ(holder->loaded, 1);
}

TEST_F(ResourceTest, TheFileThatIsHeldIsKept) {
    load_list();
    set("resourcefile resource string text changed");
    t_symbol *found = jxmlresfile_read(holder, gensym("test.xml"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->s_name, path_of("test.xml"));
    EXPECT_EQ(resource("string", 0), "changed");
}

TEST_F(ResourceTest, AFileThatIsNoXmlIsFoundAndNotLoaded) {
    write_file("list.txt", "no xml");
    t_symbol *found = jxmlresfile_read(holder, gensym("list.txt"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(holder->loaded, 0);
    EXPECT_EQ(read_file(path_of("list.txt")), "no xml");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(ResourceTest, AFileIsNeverMadeAnewBecauseMemoryRanOut) {
    write_file("list.xml", "<?xml version=\"1.0\"?>\n<resourcefile>kept</resourcefile>");
    with_each_allocation_failing(
        [this] { jxmlresfile_read(holder, gensym("list.xml")); },
        [this](bool) { EXPECT_NE(read_file(path_of("list.xml")).find("kept"), std::string::npos); });
}

TEST_F(ResourceTest, WithoutADocumentOpeningShowsAnAlert) {
    jxmlresfile_open(holder);
    jxmlresfile_open(nullptr);
    EXPECT_EQ(take_lines(), Lines(2, "alert: No xml file loaded"));
    EXPECT_EQ(holder->editor, nullptr);
    load("<a>");
    jxmlfile_filename(holder, gensym("test.xml"));
    take_lines();
    jxmlresfile_open(holder);
    EXPECT_EQ(take_lines(), Lines()) << "the file counts as loaded";
    ASSERT_NE(holder->editor, nullptr);
    EXPECT_EQ(editor_state(holder->editor).text, "");
}

TEST_F(ResourceTest, WhatIsThereAndCannotBeReadIsNotMadeAnew) {
    std::filesystem::create_directory(path_of("folder.xml"));
    load("<kept/>", "kept.xml");
    EXPECT_EQ(jxmlresfile_read(holder, gensym("folder.xml")), nullptr);
    EXPECT_EQ(jxmlresfile_read(holder, gensym("")), nullptr);
    EXPECT_EQ(take_lines(), (Lines{error("can't find folder.xml"), error("can't find ")}));
    EXPECT_EQ(document(), "<kept/>");
    EXPECT_TRUE(std::filesystem::is_directory(path_of("folder.xml")));
}

TEST_F(ResourceTest, OpeningShowsTheDocument) {
    load("<a/>");
    jxmlresfile_open(holder);
    ASSERT_NE(holder->editor, nullptr);
    EXPECT_EQ(editor_state(holder->editor).text, "<?xml version=\"1.0\"?>\n<a/>\n");
    EXPECT_EQ(take_lines(), Lines());
}

// ---- paths

TEST_F(PathnameTest, ANativePathIsFromTheRoot) {
    EXPECT_STREQ(vrk_path_to_OSX_path(nullptr, gensym("/a/b.xml"))->s_name, "/a/b.xml");
    EXPECT_EQ(vrk_path_to_OSX_path(nullptr, gensym("b.xml"))->s_name, path_of("b.xml"));
    EXPECT_EQ(vrk_path_to_OSX_path(nullptr, gensym("/a/b.xml")), gensym("/a/b.xml")) << "equal paths, equal symbols";
}

TEST_F(PathnameTest, APathThatTheHostCannotConvertIsEmpty) {
    EXPECT_STREQ(vrk_path_to_OSX_path(nullptr, gensym(std::string(4000, 'x').c_str()))->s_name, "");
    EXPECT_STREQ(vrk_path_to_OSX_path(nullptr, gensym(""))->s_name, "");
    EXPECT_STREQ(vrk_path_to_OSX_path(nullptr, nullptr)->s_name, "");
}

TEST_F(PathnameTest, AFileIsLocatedByNameOrPath) {
    std::filesystem::create_directory(path_of("inner"));
    write_file("inner/a.xml", "");
    EXPECT_EQ(vrk_file_locate(gensym("a.xml")), nullptr);
    EXPECT_EQ(vrk_file_locate(gensym("inner/a.xml"))->s_name, path_of("inner/a.xml"));
    EXPECT_EQ(vrk_file_locate(gensym(path_of("inner/a.xml").c_str()))->s_name, path_of("inner/a.xml"));
    set_search_folders({"inner"});
    EXPECT_EQ(vrk_file_locate(gensym("a.xml"))->s_name, path_of("inner/a.xml"));
}

TEST_F(PathnameTest, AFileIsLookedUpInTheHostsMemory) {
    write_file("a.xml", "");
    trace_calls(trace_file);
    vrk_file_locate(gensym("missing.xml"));
    size_t asked = 0;
    for (const std::string &line : take_lines())
        asked += line.find("path_topotentialname") != line.npos;
    EXPECT_EQ(asked, 1u) << "whether it is there or not";
    trace_calls(0);
    fail_nth_allocation(1);
    EXPECT_EQ(vrk_file_locate(gensym("a.xml")), nullptr);
    fail_nth_allocation(0);
    EXPECT_EQ(vrk_file_locate(gensym("a.xml"))->s_name, path_of("a.xml"));
}

TEST_F(PathnameTest, AFileThatIsNotThereIsNull) {
    const size_t blocks = memory_in_use().blocks;
    EXPECT_EQ(vrk_file_locate(gensym("missing.xml")), nullptr);
    EXPECT_EQ(vrk_file_locate(gensym("")), nullptr);
    EXPECT_EQ(vrk_file_locate(gensym(std::string(4000, 'x').c_str())), nullptr);
    EXPECT_EQ(vrk_file_locate(nullptr), nullptr);
    EXPECT_EQ(memory_in_use().blocks, blocks);
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(PathnameTest, AFileWhosePathIsTooLongForTheHostIsNull) {
    std::string deep = std::string(200, 'd');
    while (path_of(deep).size() + 250 < MAX_PATH_CHARS)
        deep += "/" + std::string(200, 'd');
    const std::string fits(MAX_PATH_CHARS - 2 - path_of(deep).size(), 'f'), too_long = fits + "f";
    std::filesystem::create_directories(path_of(deep));
    write_file(deep + "/" + fits, "");
    write_file(deep + "/" + too_long, "");
    set_search_folders({deep});
    EXPECT_NE(vrk_file_locate(gensym(fits.c_str())), nullptr);
    EXPECT_EQ(vrk_file_locate(gensym(too_long.c_str())), nullptr);
}

TEST_F(PathnameTest, TheTemporaryFolderIsMadeOnceAndFoundAgain) {
    setenv("TMPDIR", folder().c_str(), 1);
    const short first = vrk_path_tempfolder("images");
    const short second = vrk_path_tempfolder("images");
    const short other = vrk_path_tempfolder("other");
    unsetenv("TMPDIR");
    EXPECT_NE(first, 0);
    EXPECT_EQ(second, first);
    EXPECT_NE(other, 0);
    EXPECT_NE(other, first);
    EXPECT_EQ(first, folder_id(path_of("org.vrk.tessaroll/images")));
}

TEST_F(PathnameTest, ATemporaryFolderThatCannotBeMadeIsZero) {
    setenv("TMPDIR", folder().c_str(), 1);
    EXPECT_EQ(vrk_path_tempfolder(nullptr), 0);
    EXPECT_EQ(vrk_path_tempfolder(""), 0);
    EXPECT_EQ(vrk_path_tempfolder("no/such/parent"), 0);
    write_file("org.vrk.tessaroll/file", "");
    EXPECT_EQ(vrk_path_tempfolder("file"), 0) << "a file is in its place";
    setenv("TMPDIR", path_of("missing").c_str(), 1);
    EXPECT_EQ(vrk_path_tempfolder("images"), 0);
    unsetenv("TMPDIR");
}

TEST_F(PathnameTest, ADocumentIsSavedWholeOrTheFileIsNotTouched) {
    load("<a>text</a>");
    t_symbol *path = gensym(path_of("out.xml").c_str());
    const int written = vrk_save_document(path, holder->doc);
    EXPECT_EQ(read_file(path->s_name), "<?xml version=\"1.0\"?>\n<a>text</a>\n");
    EXPECT_EQ(written, static_cast<int>(read_file(path->s_name).size()));
    EXPECT_EQ(vrk_save_document(nullptr, holder->doc), -EINVAL);
    EXPECT_EQ(vrk_save_document(path, nullptr), -EINVAL);
    EXPECT_EQ(vrk_save_document(gensym("/no/such/folder/a.xml"), holder->doc), -ENOENT);
    EXPECT_EQ(vrk_save_document(gensym(folder().c_str()), holder->doc), -EISDIR);
    holder->doc->encoding = xmlStrdup((const xmlChar *)"no-such-encoding");
    EXPECT_EQ(vrk_save_document(path, holder->doc), -ENOTSUP);
    EXPECT_EQ(read_file(path->s_name), "<?xml version=\"1.0\"?>\n<a>text</a>\n");
}

TEST_F(PathnameTest, ASavedFileKeepsItsPermissionsAndItsLink) {
    load("<a>text</a>");
    std::filesystem::permissions(path_of("test.xml"), std::filesystem::perms(0640));
    std::filesystem::create_symlink("test.xml", path_of("link.xml"));
    EXPECT_GT(vrk_save_document(gensym(path_of("link.xml").c_str()), holder->doc), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(path_of("link.xml")));
    EXPECT_EQ(std::filesystem::status(path_of("test.xml")).permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(read_file(path_of("test.xml")), "<?xml version=\"1.0\"?>\n<a>text</a>\n");
    const auto files = std::filesystem::directory_iterator(folder());
    EXPECT_EQ(std::distance(begin(files), end(files)), 2) << "nothing is left beside them";
}

// ---- whole files

TEST_F(WholeFileTest, AFileIsReadWithAllItsBytes) {
    for (const std::string &content : {std::string("text"), std::string("a\0b\r\n\x1A", 6), std::string()}) {
        write_file("été 日本.bin", content);
        std::size_t size = 99;
        const malloc_array<char> bytes(vrk_read_file("été 日本.bin", &size));
        ASSERT_NE(bytes, nullptr);
        EXPECT_EQ(std::string(bytes.get(), size), content);
    }
}

TEST_F(WholeFileTest, WhatIsNoRegularFileIsThereButNotRead) {
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char *name : {"folder", "pipe", "/dev/null"}) {
        std::size_t size = 0;
        EXPECT_EQ(vrk_read_file(name, &size), nullptr) << name;
        EXPECT_TRUE(vrk_file_exists(name)) << name;
    }
}

TEST_F(WholeFileTest, AFileIsThereUnderItsNameOnly) {
    std::size_t size = 0;
    write_file("été.xml", "");
    EXPECT_TRUE(vrk_file_exists("été.xml"));
    for (const char *name : {"ete.xml", "\xE9t\xE9.xml", "folder/été.xml", ""}) {
        EXPECT_FALSE(vrk_file_exists(name)) << name;
        EXPECT_EQ(vrk_read_file(name, &size), nullptr) << name;
    }
}
