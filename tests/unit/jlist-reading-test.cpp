// Reading the rows of a list from resource files.
#include <filesystem>

#include "support/failing-allocations.h"
#include "support/jlist-files-test.h"

using namespace maxhost;

namespace {

std::string numbered_elements(long count) {
    std::string elements;
    for (long i = 0; i < count; ++i)
        elements += "<string number=\"" + std::to_string(i) + "\">" + std::to_string(i) + "</string>";
    return elements;
}

std::string hexadecimal(const std::string &bytes) {
    std::string digits;
    for (const char byte : bytes) {
        digits += "0123456789ABCDEF"[static_cast<unsigned char>(byte) >> 4];
        digits += "0123456789ABCDEF"[static_cast<unsigned char>(byte) & 15];
    }
    return digits;
}

} // namespace

// ---- reading texts

TEST_F(JlistFilesTest, ResourcesBecomeRowsInTheOrderOfTheirNumbers) {
    EXPECT_EQ(load_resources("<string number=\"2\">c</string><image number=\"0\">no text</image>"
                             "<string number=\"0\">a</string><!-- b --><string number=\"1\">b b</string>"),
              1);
    EXPECT_EQ(texts(), (Lines{"a", "b b", "c"}));
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistFilesTest, ALoadReplacesTheRowsAndSelectsTheFirst) {
    fill({"x", "y", "z", "w"});
    write_file("two.xml", file_of(numbered_elements(2)));
    trace_calls(trace_view);
    EXPECT_EQ(load("two.xml"), 1);
    EXPECT_EQ(take_lines(),
              (Lines{"trace: jdataview_clear", "trace: jdataview_addrows 2",
                     "trace: jdataview_redrawcell vrk.tessaroll 0", "trace: jdataview_selectcell vrk.tessaroll 1"}));
    EXPECT_EQ(texts(), (Lines{"0", "1"}));
    EXPECT_EQ(rows(), "current 1, selected 1 of 2");
    EXPECT_EQ(view().rows, 2);
    EXPECT_EQ(view().selected, 1);
}

TEST_F(JlistFilesTest, TheHolderNamesRootGroupAndTypeAndKeepsTheDocument) {
    write_file("other.xml", "<?xml version=\"1.0\"?><book><chapter><page number=\"0\">one</page></chapter></book>");
    use_holder("page");
    holder->root = gensym("book");
    holder->xmlpath[0] = gensym("chapter");
    EXPECT_EQ(load("other.xml"), 1);
    EXPECT_EQ(texts(), (Lines{"one"}));
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_NE(holder->doc, nullptr);
}

TEST_F(JlistFilesTest, FilesAreFoundInTheSearchPathAndByFullPath) {
    std::filesystem::create_directories("library/deep");
    const std::string full = write_file("library/deep/list.xml", file_of(numbered_elements(3)));
    EXPECT_EQ(load("list.xml"), 0);
    EXPECT_EQ(take_lines(), (Lines{"error: owner: can't find list.xml"}));
    EXPECT_EQ(load(full), 1);
    fill({});
    set_search_folders({"library"});
    EXPECT_EQ(load("deep/list.xml"), 1);
    EXPECT_EQ(texts(), (Lines{"0", "1", "2"}));
}

TEST_F(JlistFilesTest, TextsLoseWhatIsNoVisibleAsciiAtTheirEnds) {
    load_resources("<string number=\"0\">  First line \n</string><string number=\"1\">caf\xC3\xA9</string>"
                   "<string number=\"2\">\xC3\xA9t\xC3\xA9s</string><string number=\"3\">   </string>"
                   "<string number=\"4\"/>");
    EXPECT_EQ(texts(), (Lines{"First line", "caf", "t\xC3\xA9s", "", ""}));
}

TEST_F(JlistFilesTest, MarkedUpCharactersComeBack) {
    load_resources("<string number=\"0\">&lt;b&gt; &amp; \"c\" &#65;</string><string number=\"1\">12</string>");
    EXPECT_EQ(texts(), (Lines{"<b> & \"c\" A", "12"}));
}

TEST_F(JlistFilesTest, BytesInATextListAreTheTextUpToTheFirstZero) {
    load_resources("<string number=\"0\"><![CDATA[616263]]></string><string number=\"1\"><![CDATA[610062]]></string>"
                   "<string number=\"2\"><![CDATA[00]]></string><string number=\"3\"><![CDATA[6]]></string>"
                   "<string number=\"4\"><![CDATA[0A2041C3A9]]></string>");
    EXPECT_EQ(texts(), (Lines{"abc", "a", "", "", "\n A\xC3\xA9"})) << "and nothing is cut off their ends";
    EXPECT_EQ(take_lines(), no_lines);
}

// ---- files that are not read; the list stays as it was

TEST_F(JlistFilesTest, WithoutANameNothingIsRead) {
    fill({"a"});
    EXPECT_EQ(jlist_load_from_xml(list, holder, nullptr), 0);
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(texts(), (Lines{"a"}));
}

TEST_F(JlistFilesTest, FilesThatAreNotFoundAreTold) {
    fill({"a"});
    EXPECT_EQ(load("missing.xml"), 0);
    EXPECT_EQ(load(""), 0);
    EXPECT_EQ(take_lines(), (Lines{"error: owner: can't find missing.xml", "error: owner: can't find "}));
    EXPECT_EQ(texts(), (Lines{"a"}));
}

TEST_F(JlistFilesTest, NamesOfUpTo2048BytesAreLookedUp) {
    fill({"a"});
    for (const size_t length : {2047u, 2048u}) {
        const std::string name(length, 'x');
        EXPECT_EQ(load(name), 0);
        EXPECT_EQ(take_lines(), (Lines{"error: owner: can't find " + name}));
    }
    for (const size_t length : {2049u, 20000u}) {
        const std::string name(length, 'x');
        EXPECT_EQ(load(name), 0);
        EXPECT_EQ(take_lines(), (Lines{"error: owner: path " + name + " too long"}));
    }
    EXPECT_EQ(texts(), (Lines{"a"}));
}

TEST_F(JlistFilesTest, WhatDoesNotBeginAsXmlIsNotRead) {
    for (const char *content : {"", "<?xm", "plain text", "<resourcefile/>", " <?xml version=\"1.0\"?><resourcefile/>",
                                "\xEF\xBB\xBF<?xml version=\"1.0\"?><resourcefile/>"}) {
        fill({"a"});
        EXPECT_EQ(load_content(content), 0) << content;
        EXPECT_EQ(take_lines(), (Lines{"error: owner: content.xml is not an appropriate xml file"})) << content;
        EXPECT_EQ(texts(), (Lines{"a"})) << content;
        EXPECT_EQ(rows(), "current 1, selected 1 of 1") << content;
    }
}

TEST_F(JlistFilesTest, WithoutAHolderNothingCanBeRead) {
    write_file("list.xml", file_of(numbered_elements(1)));
    fill({"a"});
    EXPECT_EQ(jlist_load_from_xml(list, nullptr, gensym("list.xml")), 0);
    EXPECT_EQ(take_lines(), (Lines{"error: owner: list.xml is not an appropriate xml file"}));
    EXPECT_EQ(texts(), (Lines{"a"}));
}

// ---- files whose resources cannot be had; the list is empty

TEST_F(JlistFilesTest, WhatCannotBeParsedLeavesAnEmptyList) {
    fill({"a"});
    EXPECT_EQ(load_content("<?xml version=\"1.0\"?><resourcefile><resource>"), 0);
    EXPECT_EQ(take_lines(), (Lines{"error: owner: unable to parse file " + folder() + "/content.xml",
                                   "error: owner: cannot count resources of type string"}));
    EXPECT_EQ(jlist_hasdata(list), 0);
    EXPECT_EQ(rows(), "current 0, selected 0 of 0");
    EXPECT_EQ(view().rows, 0);
}

TEST_F(JlistFilesTest, AGapInTheNumbersEndsTheReading) {
    fill({"a"});
    EXPECT_EQ(load_resources("<string number=\"0\">a</string><string number=\"1\">b</string>"
                             "<string number=\"3\">d</string>"),
              0);
    EXPECT_EQ(take_lines(),
              (Lines{"warn: owner: no node at given path", "error: owner: cannot find string resource 2"}));
    EXPECT_EQ(jlist_hasdata(list), 0);
    EXPECT_EQ(rows(), "current 0, selected 0 of 3") << "the number that was counted stays";
    EXPECT_EQ(view().rows, 0);
}

TEST_F(JlistFilesTest, ResourcesThatStartAtOneOrHaveNoNumberAreAGap) {
    for (const char *elements : {"<string number=\"1\">a</string>", "<string>a</string>",
                                 "<string number=\"\">a</string>", "<string number=\"zero\">a</string>"}) {
        EXPECT_EQ(load_resources(elements), 0) << elements;
        EXPECT_EQ(take_lines(),
                  (Lines{"warn: owner: no node at given path", "error: owner: cannot find string resource 0"}))
            << elements;
    }
}

TEST_F(JlistFilesTest, AnElementInAResourceIsNoContent) {
    EXPECT_EQ(load_resources("<string number=\"0\">a</string><string number=\"1\"><b>c</b></string>"), 0);
    EXPECT_EQ(take_lines(), (Lines{"error: owner: cannot find string resource 1"}));
    EXPECT_EQ(jlist_hasdata(list), 0);
}

TEST_F(JlistFilesTest, NumbersAreNoItems) {
    use_holder("int");
    EXPECT_EQ(load_resources("<int number=\"0\">5</int>"), 0);
    use_holder("float");
    EXPECT_EQ(load_resources("<float number=\"0\"><![CDATA[61]]></float><float number=\"1\">2.5</float>"), 0);
    EXPECT_EQ(take_lines(), (Lines{"error: owner: resource 0 is not of proper type",
                                   "error: owner: resource 1 is not of proper type"}));
    EXPECT_EQ(jlist_hasdata(list), 0);
    EXPECT_EQ(rows(), "current 0, selected 0 of 2");
}

TEST_F(JlistFilesTest, AnExpressionThatIsNoneCannotBeCounted) {
    use_holder("]");
    EXPECT_EQ(load_resources("<string number=\"0\">a</string>"), 0);
    EXPECT_EQ(take_lines(), (Lines{"error: owner: unable to evaluate xpath expression \"/resourcefile/resource/]\"",
                                   "error: owner: cannot count resources of type ]"}));
    EXPECT_EQ(rows(), "current 0, selected 0 of 0");
}

TEST_F(JlistFilesTest, MoreResourcesThanSixteenBitsCountAreRefused) {
    EXPECT_EQ(load_resources(numbered_elements(32768)), 0);
    EXPECT_EQ(take_lines(), (Lines{"error: owner: cannot count resources of type string (more than 32767)"}));
    EXPECT_EQ(jlist_hasdata(list), 0);
    EXPECT_EQ(rows(), "current 0, selected 0 of 0");
}

TEST_F(JlistFilesTest, AsManyResourcesAsSixteenBitsCountAreRead) {
    EXPECT_EQ(load_resources(numbered_elements(32767)), 1);
    EXPECT_EQ(rows(), "current 1, selected 1 of 32767");
    EXPECT_EQ(jlist_getdata(list, 32767), gensym("32766"));
    EXPECT_EQ(view().rows, 32767);
}

// ---- a list whose reading gave up

TEST_F(JlistFilesTest, AListThatGaveUpHasNothingToMoveInOrToGive) {
    give_up();
    trace_calls(trace_view);
    jlist_int(list, 2);
    jlist_set(list, 2);
    jlist_next(list);
    jlist_previous(list);
    jlist_home(list);
    jlist_end(list);
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(rows(), "current 0, selected 0 of 3");
    EXPECT_EQ(jlist_bang(list), nullptr);
    for (const long row : {1L, 2L, 3L})
        EXPECT_EQ(jlist_getdata(list, row), nullptr);
    jlist_selected(list, gensym("vrk.tessaroll"), 2);
    EXPECT_EQ(jlist_bang(list), nullptr) << "not even after a click";
    EXPECT_TRUE(painted(1).empty());
}

TEST_F(JlistFilesTest, AListThatGaveUpHasFewerThanTwoRowsToDelete) {
    give_up();
    EXPECT_EQ(remove(2), 1);
    EXPECT_EQ(rows(), "current 0, selected 0 of 3");
}

TEST_F(JlistFilesTest, AListThatGaveUpStartsAnewWithTheNextEdit) {
    give_up();
    replace(2, "x");
    EXPECT_EQ(jlist_hasdata(list), 0) << "there is nothing to replace";
    give_up();
    append("a");
    EXPECT_EQ(texts(), (Lines{"a"}));
    give_up();
    insert(3, "b");
    EXPECT_EQ(texts(), (Lines{"b"}));
    give_up();
    edit("prepend", 3, gensym("c"));
    EXPECT_EQ(texts(), (Lines{"c"}));
    EXPECT_EQ(rows(), "current 1, selected 1 of 1");
    EXPECT_EQ(view().rows, 1);
}

TEST_F(JlistFilesTest, AListThatGaveUpCanBeClearedLoadedAndFreed) {
    give_up();
    jlist_clear(list);
    EXPECT_EQ(rows(), "current 0, selected 0 of 0");
    give_up();
    EXPECT_EQ(load_resources(numbered_elements(2)), 1);
    EXPECT_EQ(texts(), (Lines{"0", "1"}));
    use_images();
    give_up(); // freed at the end
}

// ---- a file without resources

TEST_F(JlistFilesTest, NoResourcesMakeAListWithDataAndWithoutRows) {
    for (const char *content :
         {"<?xml version=\"1.0\"?><resourcefile><resource/></resourcefile>", "<?xml version=\"1.0\"?><another-root/>",
          "<?xml version=\"1.0\"?><resourcefile><resource><image number=\"0\"/></resource>"
          "</resourcefile>"}) {
        fill({"a", "b"});
        trace_calls(trace_view);
        EXPECT_EQ(load_content(content), 1) << content;
        EXPECT_EQ(take_lines(),
                  (Lines{"trace: jdataview_clear", "trace: jdataview_addrows 0",
                         "trace: jdataview_redrawcell vrk.tessaroll 0", "trace: jdataview_selectcell vrk.tessaroll 1"}))
            << content;
        EXPECT_EQ(jlist_hasdata(list), 1) << content;
        EXPECT_EQ(rows(), "current 1, selected 1 of 0") << content;
        EXPECT_EQ(view().rows, 0) << content;
    }
}

// ---- images

TEST_F(JlistFilesTest, ImagesAreReadFromBytesAndPainted) {
    const std::string picture = read_file(TEST_DATA_DIR "/forty-by-twenty.png");
    use_images();
    use_holder("image");
    EXPECT_EQ(load_resources("<image number=\"1\"><![CDATA[" + hexadecimal(picture) + "]]></image>" +
                             "<image number=\"0\"><![CDATA[" + hexadecimal(read_file(TEST_DATA_DIR "/two-by-one.png")) +
                             "]]></image>"),
              1);
    EXPECT_EQ(rows(), "current 1, selected 1 of 2");
    EXPECT_EQ(painted(1).at(0).rect.width, 2);
    EXPECT_EQ(painted(2).at(0).rect.width, 40);
    EXPECT_EQ(painted(2).at(0).rect.x, 32);
    EXPECT_EQ(painted(2).at(0).rect.y, -5);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistFilesTest, WhatIsNoImageMakesARowWithoutOne) {
    use_images();
    use_holder("image");
    EXPECT_EQ(load_resources("<image number=\"0\"><![CDATA[89504E47]]></image><image number=\"1\">a text</image>"
                             "<image number=\"2\"/><image number=\"3\"><![CDATA[]]></image>"),
              1);
    EXPECT_EQ(items(), (std::vector<void *>(4, nullptr)));
    EXPECT_TRUE(painted(2).empty());
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistFilesTest, ImagesThatWereReadAreDestroyedWhenTheReadingGivesUp) {
    use_images();
    use_holder("image");
    const size_t objects = memory_in_use().objects;
    const std::string picture = "<![CDATA[" + hexadecimal(read_file(TEST_DATA_DIR "/two-by-one.png")) + "]]>";
    EXPECT_EQ(load_resources("<image number=\"0\">" + picture + "</image><image number=\"1\">" + picture +
                             "</image><image number=\"3\">" + picture + "</image>"),
              0);
    EXPECT_EQ(memory_in_use().objects, objects);
    EXPECT_EQ(take_lines(),
              (Lines{"warn: owner: no node at given path", "error: owner: cannot find image resource 2"}));
}

// ---- when memory runs out

TEST_F(JlistFilesTest, AReadOfTextsWithoutMemoryIsToldAndLeavesTheListEmpty) {
    write_file("list.xml", file_of("<string number=\"0\">a</string><string number=\"1\"><![CDATA[62]]></string>"
                                   "<string number=\"2\">c</string>"));
    with_each_allocation_failing(
        [&] {
            fill({"before"});
            load("list.xml");
        },
        [&](bool failed) {
            EXPECT_EQ(has_error(take_lines()), failed);
            EXPECT_EQ(texts(), failed ? no_lines : (Lines{"a", "b", "c"}));
            EXPECT_EQ(view().rows, failed ? 0 : 3);
        });
}

TEST_F(JlistFilesTest, AReadOfImagesWithoutMemoryLeavesNoImageBehind) {
    use_images();
    use_holder("image");
    const std::string picture = "<![CDATA[" + hexadecimal(read_file(TEST_DATA_DIR "/two-by-one.png")) + "]]>";
    write_file("images.xml",
               file_of("<image number=\"0\">" + picture + "</image><image number=\"1\">" + picture + "</image>"));
    const size_t objects = memory_in_use().objects;
    with_each_allocation_failing([&] { load("images.xml"); },
                                 [&](bool failed) {
                                     EXPECT_EQ(has_error(take_lines()), failed);
                                     EXPECT_EQ(items().size(), failed ? 0u : 2u);
                                     EXPECT_EQ(memory_in_use().objects - objects, failed ? 0u : 2u);
                                 });
}
