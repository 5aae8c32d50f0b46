// What a written file holds, and which file is written.
#include "box/program-fixture.h"

namespace {

TEST_F(Program, WritesAResourceFile) {
    transcript_of(NEW_LIST +
                  "list append \"First line\"\nlist append \"a & b < c > d\"\nlist append \"Second line\"\n" +
                  "host answer out.xml\nlist write\n");
    EXPECT_EQ(file_text(current() / "out.xml"), "<?xml version=\"1.0\"?>\n"
                                                "<resourcefile><resource>"
                                                "<string number=\"0\">First line</string>"
                                                "<string number=\"1\">a &amp; b &lt; c &gt; d</string>"
                                                "<string number=\"2\">Second line</string>"
                                                "</resource></resourcefile>\n");
}

TEST_F(Program, WritesIntoTheChosenFolder) {
    const std::string before = resource_file(2);
    const fs::path searched = folder_with("searched", "same.xml", before);
    const fs::path chosen = folder_with("chosen", "other.xml", "old");
    const std::string full = (chosen / "same.xml").string();
    EXPECT_EQ(transcript_of(NEW_LIST + "list append a\nhost answer same.xml\nhost answer " + full +
                                "\nlist write\nlist append b\nlist write\n",
                            {"--search", searched.string()}),
              "dialog: \"Save as:\" \"vrk.tessaroll\" -> same.xml\n"
              "dialog: \"Save as:\" \"vrk.tessaroll\" -> " +
                  full + "\n");
    EXPECT_EQ(file_text(searched / "same.xml"), before);
    EXPECT_EQ(file_text(current() / "same.xml"),
              "<?xml version=\"1.0\"?>\n<resourcefile><resource><string number=\"0\">a</string>"
              "</resource></resourcefile>\n");
    EXPECT_EQ(file_text(chosen / "same.xml"),
              "<?xml version=\"1.0\"?>\n<resourcefile><resource><string number=\"0\">a</string>"
              "<string number=\"1\">b</string></resource></resourcefile>\n");
    EXPECT_EQ(file_text(chosen / "other.xml"), "old");
}

TEST_F(Program, WritesToANameThatItIsGiven) {
    const std::string full = (elsewhere.path() / "full.xml").string();
    EXPECT_EQ(transcript_of(NEW_LIST + "list append a\nlist write given.xml\nlist write " + full + "\n"), "");
    const std::string expected = "<?xml version=\"1.0\"?>\n<resourcefile><resource><string number=\"0\">a</string>"
                                 "</resource></resourcefile>\n";
    EXPECT_EQ(file_text(current() / "given.xml"), expected);
    EXPECT_EQ(file_text(full), expected);
}

TEST_F(Program, WritesNothingWhenTheDialogIsCancelled) {
    transcript_of(NEW_LIST + "list append a\nhost answer cancel\nlist write\nlist write\n");
    EXPECT_TRUE(fs::is_empty(current()));
}

TEST_F(Program, WritesAnEmptyFileForAClearedList) {
    transcript_of(NEW_LIST + "list append a\nlist clear\nhost answer new.xml\nlist write\nlist write given.xml\n");
    EXPECT_EQ(file_text(current() / "new.xml"), "");
    EXPECT_TRUE(fs::exists(current() / "given.xml"));
    EXPECT_EQ(file_text(current() / "given.xml"), "");
}

TEST_F(Program, LeavesAFileAloneWhenAClearedListIsWrittenToIt) {
    write_file(current() / "old.xml", "old");
    transcript_of(NEW_LIST + "host answer old.xml\nlist write\nlist write old.xml\n");
    EXPECT_EQ(file_text(current() / "old.xml"), "old");
}

TEST_F(Program, TellsOfEachFileThatCannotBeWritten) {
    fs::create_directory(current() / "folder.xml");
    const std::string too_long(3000, 'x');
    const std::string transcript =
        transcript_of(NEW_LIST + "list append a\nhost answer folder.xml\nhost answer cancel\nlist write\nlist write\n" +
                      "list write /no-such-folder/a.xml\nlist write /dev/full\nlist write " + too_long + "\n");
    EXPECT_EQ(transcript.substr(0, transcript.find("xxx")),
              "dialog: \"Save as:\" \"vrk.tessaroll\" -> folder.xml\n"
              "error: list: unable to write folder.xml (Is a directory)\n"
              "dialog: \"Save as:\" \"vrk.tessaroll\" -> cancel\n"
              "error: list: unable to write /no-such-folder/a.xml (No such file or directory)\n"
              "error: list: unable to write /dev/full (No space left on device)\n"
              "error: list: unable to write ");
    EXPECT_TRUE(fs::is_empty(current() / "folder.xml"));
    EXPECT_EQ(std::distance(fs::directory_iterator(current()), {}), 1);
}

TEST_F(Program, WritesAndReadsManyItems) {
    std::string script = NEW_LIST;
    std::string dumped;
    for (int i = 1; i <= 500; ++i) {
        script += "list append \"<item & number " + std::to_string(i) + "]]>\"\n";
        dumped += "list:2 \"<item & number " + std::to_string(i) + "]]>\"\nlist:0 " + std::to_string(i) + "\n";
    }
    EXPECT_EQ(transcript_of(script + "list write many.xml\nlist clear\nlist read many.xml\nlist dump\n"),
              "list:1 0\n" + dumped);
}

} // namespace
