// Writing the rows of a list to resource files.
#include <filesystem>

#include "support/failing-allocations.h"
#include "support/jlist-files-test.h"
#include "support/longest-file.h"

using namespace maxhost;

// ---- writing texts

TEST_F(JlistFilesTest, EveryRowBecomesANumberedResource) {
    fill({"First line", "second", ""});
    trace_calls(trace_view);
    EXPECT_EQ(written("out.xml"), file_of("<string number=\"0\">First line</string><string number=\"1\">second</string>"
                                          "<string number=\"2\"/>"));
    EXPECT_EQ(take_lines(), no_lines) << "the view is not touched";
    EXPECT_EQ(rows(), "current 3, selected 3 of 3");
}

TEST_F(JlistFilesTest, WhatIsWrittenIsReadAgainButForTheEndsThatReadingTrims) {
    const Lines all = {"<b> & \"c\"",
                       "12",
                       "-1.5",
                       "&amp;",
                       "]]>",
                       "two\nlines, one\ttab",
                       "a\rb",
                       "caf\xC3\xA9s",
                       "%41 #1 $2; 3",
                       std::string(10000, 'x'),
                       "",
                       "a",
                       "a"};
    fill(all);
    write("out.xml");
    fill({});
    EXPECT_EQ(load("out.xml"), 1);
    EXPECT_EQ(texts(), all);
    EXPECT_EQ(take_lines(), no_lines);

    fill({" a ", "caf\xC3\xA9", "\xC3\x84rger", "\xE6\x97\xA5\xE6\x9C\xAC"});
    write("trimmed.xml");
    EXPECT_EQ(load("trimmed.xml"), 1);
    EXPECT_EQ(texts(), (Lines{"a", "caf", "rger", ""}));
}

TEST_F(JlistFilesTest, ATextThatXmlCannotHoldIsToldAndLeavesItsPlaceEmpty) {
    fill({"a", "bell\x07", "broken \xC3", "d"});
    EXPECT_EQ(written("out.xml"), file_of("<string number=\"0\">a</string><string number=\"1\"/>"
                                          "<string number=\"2\"/><string number=\"3\">d</string>"));
    EXPECT_EQ(take_lines(), (Lines{"error: owner: text cannot be held by xml (byte 5)",
                                   "error: owner: cannot set resource string number 1",
                                   "error: owner: text cannot be held by xml (byte 8)",
                                   "error: owner: cannot set resource string number 2"}));
    EXPECT_EQ(texts().at(1), "bell\x07") << "the list itself keeps it";
    EXPECT_EQ(load("out.xml"), 1);
    EXPECT_EQ(texts(), (Lines{"a", "", "", "d"}));
}

// ---- lists without rows

TEST_F(JlistFilesTest, AListWithoutRowsIsWrittenAsAFileWithoutResources) {
    load_resources("");
    EXPECT_EQ(written("none.xml"), "<?xml version=\"1.0\"?>\n<resourcefile><resource/></resourcefile>\n");
    use_holder("string");
    EXPECT_EQ(load("none.xml"), 1);
    EXPECT_EQ(rows(), "current 1, selected 1 of 0");
}

TEST_F(JlistFilesTest, AListThatGaveUpIsNotWritten) {
    give_up();
    answer_save_dialog("new.xml");
    write("named.xml");
    write("");
    EXPECT_EQ(std::filesystem::file_size("named.xml"), 0u);
    EXPECT_EQ(std::filesystem::file_size("new.xml"), 0u);
    EXPECT_EQ(take_lines(), no_lines);
}

// ---- the file that is written

TEST_F(JlistFilesTest, AnExistingFileIsReplacedAsAWhole) {
    write_file("out.xml", std::string(5000, 'x'));
    fill({"a"});
    EXPECT_EQ(written("out.xml"), file_of("<string number=\"0\">a</string>"));
}

TEST_F(JlistFilesTest, ANamedFileIsWrittenWithoutADialog) {
    std::filesystem::create_directory("sub");
    fill({"a"});
    answer_save_dialog("chosen.xml");
    EXPECT_EQ(written("sub/%41 b.xml"), ""); // two names: the second is not looked at
    EXPECT_EQ(read_file("sub/%41"), file_of("<string number=\"0\">a</string>"));
    EXPECT_EQ(written("\"" + folder() + "/full path.xml\""), "");
    EXPECT_EQ(read_file("full path.xml"), file_of("<string number=\"0\">a</string>"));
    EXPECT_EQ(asked, no_lines);
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistFilesTest, TheDialogProposesTheNameOfTheColumn) {
    fill({"a"});
    answer_save_dialog("chosen.xml");
    write("");
    EXPECT_EQ(read_file("chosen.xml"), file_of("<string number=\"0\">a</string>"));
    write("5 six");
    EXPECT_EQ(asked, (Lines{"Save as: vrk.tessaroll", "Save as: vrk.tessaroll"})) << "a number is no name";
    use_images();
    append_item(nullptr);
    write("");
    EXPECT_EQ(asked.back(), "Save as: pictures");
}

TEST_F(JlistFilesTest, ACancelledDialogWritesNothing) {
    fill({"a"});
    answer_save_dialog("");
    write("");
    EXPECT_EQ(asked.size(), 1u);
    EXPECT_TRUE(std::filesystem::is_empty(folder()));
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(texts(), (Lines{"a"}));
}

TEST_F(JlistFilesTest, AFileOfThatNameInAnotherFolderIsNotTouched) {
    std::filesystem::create_directory("library");
    std::filesystem::create_directory("chosen");
    write_file("library/out.xml", "not to be touched");
    set_search_folders({"library"});
    fill({"a"});
    answer_save_dialog(folder() + "/chosen/out.xml");
    write("");
    EXPECT_EQ(read_file("chosen/out.xml"), file_of("<string number=\"0\">a</string>"));
    fill({"b"});
    write("");
    EXPECT_EQ(read_file("chosen/out.xml"), file_of("<string number=\"0\">b</string>")) << "now that both are there";
    EXPECT_EQ(read_file("library/out.xml"), "not to be touched");
}

TEST_F(JlistFilesTest, OfAClearedListOnlyANewFileIsMade) {
    answer_save_dialog("new.xml");
    write("");
    EXPECT_EQ(std::filesystem::file_size("new.xml"), 0u);
    write_file("old.xml", "old");
    answer_save_dialog("old.xml");
    write("");
    EXPECT_EQ(read_file("old.xml"), "old");
    write("named.xml");
    EXPECT_EQ(read_file("named.xml"), "");
    EXPECT_TRUE(std::filesystem::exists("named.xml"));
    write("old.xml");
    EXPECT_EQ(read_file("old.xml"), "old");
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistFilesTest, OfAClearedListANewFileIsMadeBesideOneInAnotherFolder) {
    std::filesystem::create_directory("library");
    write_file("library/out.xml", "not to be touched");
    set_search_folders({"library"});
    answer_save_dialog("out.xml");
    write("");
    EXPECT_EQ(std::filesystem::file_size("out.xml"), 0u);
    EXPECT_EQ(read_file("library/out.xml"), "not to be touched");
}

TEST_F(JlistFilesTest, AFileThatCannotBeWrittenIsNotedButNotPosted) {
    fill({"a"});
    std::filesystem::create_directory("folder.xml");
    write("missing/out.xml");
    EXPECT_EQ(unwritten(), "missing/out.xml: No such file or directory");
    write("folder.xml");
    EXPECT_EQ(unwritten(), "folder.xml: Is a directory");
    write("out.xml");
    EXPECT_EQ(unwritten(), "") << "what was noted before is forgotten";
    write("/dev/full");
    EXPECT_EQ(unwritten(), "/dev/full: No space left on device");
    jlist_clear(list);
    write("missing/out.xml");
    EXPECT_EQ(unwritten(), "missing/out.xml: No such file or directory");
    EXPECT_EQ(take_lines(), no_lines);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 2);
}

TEST_F(JlistFilesTest, ACancelledDialogIsNoFailure) {
    fill({"a"});
    write("missing/out.xml");
    answer_save_dialog("");
    write("");
    EXPECT_EQ(unwritten(), "");
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistFilesTest, TheFileThatTheDialogHasMadeIsTakenAwayWhenItCannotBeWritten) {
    fill({"a"});
    answer_save_dialog("new.xml");
    {
        const LongestFile nothing(0);
        write("");
    }
    EXPECT_EQ(unwritten(), "new.xml: File too large");
    EXPECT_FALSE(std::filesystem::exists("new.xml"));
    write_file("old.xml", "");
    answer_save_dialog("old.xml");
    {
        const LongestFile nothing(0);
        write("");
    }
    EXPECT_TRUE(std::filesystem::exists("old.xml")) << "this one was there";
    EXPECT_EQ(take_lines(), no_lines);
}

TEST_F(JlistFilesTest, ANameThatIsTooLongIsNotedButNotPosted) {
    fill({"a"});
    const std::string name(2048, 'x');
    write(name);
    EXPECT_EQ(unwritten(), name + ": File name too long");
    write(std::string(2047, 'x')); // fits, but no file can have it
    EXPECT_EQ(unwritten(), name.substr(1) + ": File name too long");
    answer_save_dialog(std::string(5000, 'x'));
    write("");
    EXPECT_TRUE(std::filesystem::is_empty(folder()));
    EXPECT_EQ(take_lines(), no_lines);
}

// ---- images

TEST_F(JlistFilesTest, ImagesAreWrittenAndReadBack) {
    use_images();
    append_item(image_from("two-by-one.png"));
    append_item(nullptr);
    append_item(image_from("forty-by-twenty.png"));
    const std::string file = written("images.xml");
    EXPECT_TRUE(file.starts_with(
        "<?xml version=\"1.0\"?>\n<resourcefile><resource><image number=\"0\"><![CDATA[89504E470D0A1A0A"))
        << file;
    EXPECT_NE(file.find("]]></image><image number=\"1\"/><image number=\"2\"><![CDATA[89504E47"), file.npos) << file;

    use_holder("image");
    EXPECT_EQ(load("images.xml"), 1);
    EXPECT_EQ(painted(1).at(0).rect.width, 2);
    EXPECT_EQ(jlist_getdata(list, 2), nullptr);
    EXPECT_EQ(painted(3).at(0).rect.height, 20);
    EXPECT_EQ(written("again.xml"), file) << "nothing is lost on the way";
    EXPECT_EQ(take_lines(), no_lines);
}

// ---- when memory runs out

TEST_F(JlistFilesTest, AWriteOfTextsWithoutMemoryIsToldAndLeavesTheFileAlone) {
    fill({"a", "b"});
    with_each_allocation_failing(
        [&] {
            write_file("out.xml", "before");
            write("out.xml");
        },
        [&](bool failed) {
            EXPECT_EQ(has_error(take_lines()), failed);
            EXPECT_EQ(read_file("out.xml"), failed ? "before"
                                                   : file_of("<string number=\"0\">a</string>"
                                                             "<string number=\"1\">b</string>"));
            EXPECT_EQ(texts(), (Lines{"a", "b"}));
        });
}

TEST_F(JlistFilesTest, AWriteOfImagesWithoutMemoryIsToldAndKeepsTheImages) {
    use_images();
    append_item(image_from("two-by-one.png"));
    append_item(image_from("forty-by-twenty.png"));
    const std::vector<void *> images = items();
    const std::string whole = written("whole.xml");
    with_each_allocation_failing([&] { write("out.xml"); },
                                 [&](bool failed) {
                                     EXPECT_EQ(has_error(take_lines()), failed);
                                     EXPECT_EQ(read_file("out.xml") == whole, !failed);
                                     EXPECT_EQ(items(), images);
                                 });
}
