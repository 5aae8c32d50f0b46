// What vrk-xml saves, and whose work it does not overwrite.
#include "xml-tool/xml-tool-test.h"

#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class XmlSaving : public XmlToolTest {
  protected:
    // Whether somebody holds the lock on a file.
    bool is_locked(const std::string &name) const {
        const int file = open(path_of(name).c_str(), O_RDONLY | O_CLOEXEC);
        const bool free = flock(file, LOCK_EX | LOCK_NB) == 0;
        close(file);
        return !free;
    }

    // A batch that has read f.xml and a line, and saves when it is let go on.
    struct OpenBatch {
        FILE *input;
        fs::path complaints;
    };
    OpenBatch begin_batch(const std::string &line, const std::string &options = "") const {
        const std::string command =
            "cd " + folder.path().string() + " && exec " VRK_XML_PROGRAM " f.xml batch " + options + " 2>complaints";
        FILE *input = popen(command.c_str(), "w");
        fputs((line + "\n").c_str(), input);
        fflush(input);
        for (int unread = 1; unread > 0;) // it reads the document before the line
            ioctl(fileno(input), FIONREAD, &unread);
        EXPECT_TRUE(is_locked("f.xml"));
        return {input, path_of("complaints")};
    }
    static int end(const OpenBatch &batch) { return WEXITSTATUS(pclose(batch.input)); }
};

} // namespace

TEST_F(XmlSaving, AFileThatSomebodyElseHasChangedIsNotSaved) {
    write("<a/>");
    OpenBatch batch = begin_batch("set a text mine");
    write("<a>theirs</a>");
    EXPECT_EQ(end(batch), 1);
    EXPECT_EQ(file_text(batch.complaints), "f.xml has changed since it was read, and is not saved\n");
    EXPECT_EQ(content(), "<a>theirs</a>");
}

TEST_F(XmlSaving, AFileThatSomebodyHasReplacedOrTakenAwayIsNotSaved) {
    write("<a/>");
    OpenBatch batch = begin_batch("set a text mine");
    write("<b/>", "other.xml");
    fs::rename(path_of("other.xml"), path_of("f.xml"));
    EXPECT_EQ(end(batch), 1);
    EXPECT_EQ(content(), "<b/>");

    batch = begin_batch("set b text mine");
    fs::remove(path_of("f.xml"));
    EXPECT_EQ(end(batch), 1);
    EXPECT_EQ(files(), (std::vector<std::string>{"complaints"}));
}

TEST_F(XmlSaving, TheSameFileUnderAnotherNameIsTheSameFile) {
    write("<a/>");
    fs::create_symlink("f.xml", path_of("link.xml"));
    OpenBatch batch = begin_batch("set a text mine", "-o link.xml");
    write("<a>theirs</a>");
    EXPECT_EQ(end(batch), 1);
    EXPECT_EQ(file_text(batch.complaints), "link.xml has changed since it was read, and is not saved\n");
    EXPECT_EQ(content(), "<a>theirs</a>");

    batch = begin_batch("set a text mine", "-o other.xml");
    write("<a>again</a>");
    EXPECT_EQ(end(batch), 0) << "another file takes nothing away";
    EXPECT_EQ(content("other.xml"), "<a>mine</a>");
}

TEST_F(XmlSaving, WhoOnlyReadsWaitsForNobody) {
    write("<a>text</a>");
    OpenBatch batch = begin_batch("set a text mine");
    EXPECT_EQ(output("f.xml get a"), "text\n");
    output("f.xml get a --out copy");
    EXPECT_EQ(end(batch), 0);
    EXPECT_EQ(output("f.xml get a"), "mine\n");
}

TEST_F(XmlSaving, TwoThatEditOneFileWaitForEachOther) {
    constexpr int rounds = 25;
    write("<a/>");
    const auto add_elements = [&](const std::string &name) {
        for (int i = 0; i < rounds; ++i)
            EXPECT_EQ(run(words("f.xml set a " + name + std::to_string(i) + " text x")).status, 0);
    };
    std::thread other([&] { add_elements("b"); });
    add_elements("c");
    other.join();
    EXPECT_EQ(output(words("f.xml count a", {"*"})), std::to_string(2 * rounds) + "\n");
    EXPECT_EQ(files(), (std::vector<std::string>{"f.xml"}));
}

TEST_F(XmlSaving, WhoWaitsForAnotherSaysSo) {
    write("<a/>");
    OpenBatch batch = begin_batch("set a b text mine");
    const fs::path told = path_of("told");
    const std::string command = "cd " + folder.path().string() + " && exec " VRK_XML_PROGRAM " f.xml set a c text x 2>";
    FILE *waiting = popen((command + told.string()).c_str(), "r");
    while (!fs::exists(told) || fs::file_size(told) == 0) {
    }
    EXPECT_EQ(end(batch), 0);
    EXPECT_EQ(pclose(waiting), 0);
    EXPECT_EQ(file_text(told), "waiting for f.xml, which another vrk-xml edits\n");
    EXPECT_EQ(output(words("f.xml count a", {"*"})), "2\n");
}

TEST_F(XmlSaving, AnOutputFileIsWrittenWhole) {
    write("<a>" + std::string(200000, 'x') + "</a>");
    write_file(path_of("keep.bin"), "precious data");
    const ScriptResult result = script_run(
        {"/bin/sh", {"-c", "ulimit -f 8; exec \"$0\" f.xml get a --out keep.bin", VRK_XML_PROGRAM}, "", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.complaints, "unable to write keep.bin (File too large)\n");
    EXPECT_EQ(file_text(path_of("keep.bin")), "precious data");
    expect_refused("f.xml get a --out /dev/full", "unable to write /dev/full (No space left on device)");
}

TEST_F(XmlSaving, TheDocumentIsNotAnOutputFile) {
    write("<a>text</a>");
    fs::create_symlink("f.xml", path_of("link.xml"));
    expect_refused("f.xml get a --out f.xml", "--out: f.xml is the document itself");
    expect_refused("f.xml get a --out ./f.xml", "--out: ./f.xml is the document itself");
    expect_refused("f.xml get a --out link.xml", "--out: link.xml is the document itself");
    expect_refused("link.xml getattr a b --out f.xml", "--out: f.xml is the document itself");
    EXPECT_EQ(run(words("f.xml batch"), "get --out f.xml a\n").complaints,
              "line 1: --out: f.xml is the document itself\n");
    EXPECT_EQ(content(), "<a>text</a>");
}

TEST_F(XmlSaving, EveryFailureComesWithItsReason) {
    write("<a/>");
    fs::create_directory(path_of("folder.xml"));
    ASSERT_EQ(mkfifo(path_of("pipe.xml").c_str(), 0600), 0);
    expect_refused("f.xml set a text x -o no/such/folder.xml",
                   "unable to write no/such/folder.xml (No such file or directory)");
    expect_refused("f.xml set a text x -o folder.xml", "unable to write folder.xml (Is a directory)");
    expect_refused("f.xml set a text x -o pipe.xml", "unable to write pipe.xml (Broken pipe)");
    expect_refused("f.xml set a text x -o /dev/full", "unable to write /dev/full (No space left on device)");
    expect_refused("new no/such/folder.xml", "unable to write no/such/folder.xml (No such file or directory)");
}

TEST_F(XmlSaving, ADeviceIsWrittenToAndNotReplaced) {
    write("<a/>");
    output("f.xml set a text x -o /dev/null");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(output("f.xml set a text x -o /dev/stdout"), "<?xml version=\"1.0\"?>\n<a>x</a>\n");
}

TEST_F(XmlSaving, ALinkThatLeadsNowhereHasTheFileMadeThatItNames) {
    write("<a/>");
    fs::create_symlink("made.xml", path_of("link.xml"));
    output("f.xml set a text x -o link.xml");
    EXPECT_TRUE(fs::is_symlink(path_of("link.xml")));
    EXPECT_EQ(content("made.xml"), "<a>x</a>");
}

TEST_F(XmlSaving, ContentMayComeFromAPipe) {
    write("<a/>");
    const std::string bytes(100000, 'x'); // more than a pipe takes at once
    write_file(path_of("bytes"), bytes);
    const ScriptResult result = script_run(
        {"/bin/bash", {"-c", "\"$0\" f.xml set a cdata --data-file <(cat bytes)", VRK_XML_PROGRAM}, "", folder.path()});
    EXPECT_EQ(result.status, 0) << result.complaints;
    output("f.xml get a --out copy");
    EXPECT_EQ(file_text(path_of("copy")), bytes);
}

TEST_F(XmlSaving, APipeThatIsEmptyIsNoContent) {
    write("<a>text</a>");
    for (const char *command : {"\"$0\" f.xml set a e cdata --data-file <(true)",
                                "true | \"$0\" f.xml set a e cdata --data-file /dev/stdin"}) {
        const ScriptResult result = script_run({"/bin/bash", {"-c", command, VRK_XML_PROGRAM}, "", folder.path()});
        EXPECT_EQ(result.status, 0) << command;
        EXPECT_EQ(result.complaints, "") << command;
    }
}

TEST_F(XmlSaving, WhoWritesToAPipeMayComeLater) {
    write("<a/>");
    ASSERT_EQ(mkfifo(path_of("pipe").c_str(), 0600), 0);
    const ScriptResult result =
        script_run({"/bin/bash",
                    {"-c", "\"$0\" f.xml set a cdata --data-file pipe & printf hi > pipe; wait $!", VRK_XML_PROGRAM},
                    "",
                    folder.path()});
    EXPECT_EQ(result.status, 0) << result.complaints;
    output("f.xml get a --out copy");
    EXPECT_EQ(file_text(path_of("copy")), "hi");
}
