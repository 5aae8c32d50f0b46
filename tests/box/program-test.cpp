// vrk-run's options and exit statuses, and lines that are no command.
#include "box/program-fixture.h"

#include <fstream>
#include <regex>
#include <sstream>

namespace {

TEST_F(Program, RunsAScriptFromAFile) {
    write_file(current() / "test.script", NEW_LIST + "list length\n");
    const ScriptResult result = run({"--script", "test.script"});
    EXPECT_EQ(result.transcript, "list:1 0\n");
    EXPECT_EQ(result.complaints, "");
    EXPECT_EQ(result.status, 0);
}

TEST_F(Program, RunsAScriptFromStandardInput) { EXPECT_EQ(transcript_of(NEW_LIST + "list length\n"), "list:1 0\n"); }

TEST_F(Program, TakesLinesWithAndWithoutTheirEnds) {
    EXPECT_EQ(transcript_of("new list vrk.tessaroll\r\n\r\nlist append a\r\n// nothing\r\nlist bang\r\nlist length"),
              "list:2 a\nlist:1 1\nlist:0 1\nlist:1 1\n");
    EXPECT_EQ(transcript_of(""), "");
}

TEST_F(Program, ExplainsItself) {
    const ScriptResult result = run({"--help"});
    EXPECT_EQ(result.status, 0);
    for (const char *option : {"--plugin", "--search", "--trace", "--script"})
        EXPECT_NE(result.transcript.find(option), std::string::npos) << option;
}

// Every verb that the help names is known, and told in the page about scripts.
TEST_F(Program, TellsOfEveryVerbOfTheHost) {
    std::ifstream file(SCRIPTS_PAGE);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    std::istringstream help(run({"--help"}).transcript);
    int verbs = 0;
    for (std::string line; std::getline(help, line);) {
        if (!line.starts_with("  host "))
            continue;
        const std::string verb = line.substr(7, line.find(' ', 7) - 7);
        ++verbs;
        EXPECT_NE(page.find("`host " + verb), page.npos) << verb;
        EXPECT_EQ(run_script("host " + verb).complaints.find("host does not know"), std::string::npos) << verb;
    }
    EXPECT_GT(verbs, 15);
}

TEST_F(Program, TakesAByteOrderMark) {
    EXPECT_EQ(transcript_of("\xEF\xBB\xBFnew list vrk.tessaroll\nlist length\n"), "list:1 0\n");
}

TEST_F(Program, RefusesWrongUsage) {
    for (const Options &wrong :
         {Options{"--bogus"}, Options{""}, Options{"--script", ""}, Options{"--script"}, Options{"--search"},
          Options{"--plugin"}, Options{"--trace"}, Options{"--trace", "nonsense", "--script", "-"},
          Options{"--trace", "view,nonsense", "--script", "-"}}) {
        const ScriptResult result = run(wrong);
        EXPECT_EQ(result.status, 2) << wrong.back();
        EXPECT_NE(result.complaints, "") << wrong.back();
        EXPECT_EQ(result.transcript, "") << wrong.back();
    }
}

TEST_F(Program, RefusesFilesThatItCannotRead) {
    write_file(current() / "no-module", "this is no module\n");
    for (const Options &wrong :
         {Options{"--script", "missing.script"}, Options{"--script", "."},
          Options{"--plugin", "missing.mxl", "--script", "-"}, Options{"--plugin", "./no-module", "--script", "-"}}) {
        const ScriptResult result = run(wrong, NEW_LIST + "list length\n");
        EXPECT_EQ(result.status, 2) << wrong[1];
        EXPECT_EQ(result.complaints.rfind("vrk-run: ", 0), 0U) << result.complaints;
        EXPECT_NE(result.complaints.find(wrong[1]), std::string::npos) << result.complaints;
        EXPECT_EQ(result.transcript, "") << wrong[1];
    }
}

TEST_F(Program, LoadsTheModuleThatItIsGiven) {
    fs::path module;
    for (const fs::directory_entry &entry : fs::directory_iterator(fs::path(VRK_RUN_PROGRAM).parent_path()))
        if (entry.path().filename().string().starts_with("vrk.tessaroll."))
            module = entry.path();
    EXPECT_EQ(transcript_of(NEW_LIST + "list length\n", {"--plugin", module.string()}), "list:1 0\n");
}

TEST_F(Program, TakesFamiliesOfTracesTogetherOrApart) {
    const std::string script = "new list vrk.tessaroll\nhost set list embed 1\nlist append a\n";
    const std::string apart = transcript_of(script, {"--trace", "queue", "--trace", "dirty"});
    EXPECT_EQ(apart, "trace: jpatcher_set_dirty 1\ntrace: defer_low append 1\ntrace: jpatcher_set_dirty 1\n");
    EXPECT_EQ(transcript_of(script, {"--trace", "queue,dirty"}), apart);
}

TEST_F(Program, SearchesItsFoldersInOrderAndThenTheCurrentOne) {
    const std::string one = folder_with("one", "same.xml", resource_file(1)).string();
    const std::string two = folder_with("two", "same.xml", resource_file(2)).string();
    write_file(current() / "same.xml", resource_file(3));
    write_file(current() / "here.xml", resource_file(4));
    const std::string script = NEW_LIST + "list read same.xml\nlist length\nlist read here.xml\nlist length\n";
    EXPECT_EQ(transcript_of(script, {"--search", one, "--search", two}), "list:1 1\nlist:1 4\n");
    EXPECT_EQ(transcript_of(script, {"--search", two, "--search", one}), "list:1 2\nlist:1 4\n");
    EXPECT_EQ(transcript_of(script), "list:1 3\nlist:1 4\n");
}

TEST_F(Program, ReadsAFileByItsFullPath) {
    const std::string path = (folder_with("apart", "full.xml", resource_file(5)) / "full.xml").string();
    EXPECT_EQ(transcript_of(NEW_LIST + "list read " + path + "\nlist length\nlist read " + path + ".missing\n"),
              "list:1 5\nerror: list: can't find " + path + ".missing\n");
}

TEST_F(Program, ReadsNoFolder) {
    fs::create_directory(current() / "folder.xml");
    const std::string transcript =
        transcript_of(NEW_LIST + "list append kept\nlist read folder.xml\nlist read .\nlist read /\nlist length\n");
    EXPECT_EQ(transcript.substr(transcript.rfind("list:")), "list:1 1\n") << transcript;
    EXPECT_NE(transcript.find("error: list: "), std::string::npos);
}

// ---- lines that are no command

TEST_F(Program, StopsAtALineThatIsNoCommand) {
    const std::string before = NEW_LIST + "list length\n";
    for (const std::string line : {"nobody bang",
                                   "bang",
                                   "12 bang",
                                   "list",
                                   "new",
                                   "new other",
                                   "new other nosuchclass",
                                   "connect",
                                   "connect list 0",
                                   "connect list 0 nobody",
                                   "connect nobody 0 list",
                                   "connect list 3 list",
                                   "connect list -1 list",
                                   "connect list 0 list 1",
                                   "scheduler",
                                   "scheduler nobody bang",
                                   "host",
                                   "host frobnicate",
                                   "host free",
                                   "host free nobody",
                                   "host click list",
                                   "host click nobody 1",
                                   "host key list",
                                   "host key list sideways",
                                   "host key nobody up",
                                   "host get list",
                                   "host get list nosuch",
                                   "host get nobody cellh",
                                   "host set list",
                                   "host set list nosuch 1",
                                   "host set nobody cellh 1",
                                   "host assist list",
                                   "host assist list middle 0",
                                   "host assist nobody inlet 0",
                                   "host paint nobody",
                                   "host view nobody",
                                   "host answer",
                                   "host fail",
                                   "host fail soon"}) {
        const ScriptResult result = run_script(before + line + "\nlist length\n");
        EXPECT_EQ(result.status, 2) << line;
        EXPECT_TRUE(std::regex_match(result.complaints, std::regex("vrk-run: -:3: .+\n"))) << result.complaints;
        EXPECT_EQ(result.transcript, "list:1 0\n") << line;
    }
}

TEST_F(Program, NamesTheFileAndTheLineOfALineThatIsNoCommand) {
    write_file(current() / "wrong.script", "// a comment counts as a line\n\n" + NEW_LIST + "list foo\nnobody bang\n");
    const ScriptResult result = run({"--script", "wrong.script"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(std::regex_match(result.complaints, std::regex("vrk-run: wrong\\.script:5: .+\n")))
        << result.complaints;
    EXPECT_EQ(result.transcript, "error: list: doesn't understand \"foo\"\n");
}

TEST_F(Program, SurvivesOddLines) {
    using namespace std::string_literals;
    for (const std::string &line : {"list append \"never closed"s,
                                    "list append \\"s,
                                    "list append \"\\"s,
                                    "list ,"s,
                                    "list ,,bang"s,
                                    "list bang,"s,
                                    ",bang"s,
                                    "\"\" bang"s,
                                    "list \"\""s,
                                    "list append a\0b"s,
                                    "\0"s,
                                    "list append \xff\xfe"s,
                                    "list append ;bang"s,
                                    "; list bang"s,
                                    "#X"s,
                                    "# bang"s,
                                    "#Y bang"s,
                                    "list append 99999999999999999999"s,
                                    "list 99999999999999999999"s,
                                    "list 1e999"s,
                                    "list -1e999"s,
                                    "list insert 1e30 a"s,
                                    "new other vrk.tessaroll @"s,
                                    "new other vrk.tessaroll @embed"s,
                                    "new other vrk.tessaroll @@ 1"s,
                                    "new other vrk.tessaroll @nosuch 1 2 3"s,
                                    "new other vrk.tessaroll @patching_rect"s,
                                    "new other vrk.tessaroll @patching_rect 0 0 -50 -50"s,
                                    "new other vrk.tessaroll @patching_rect a b c d"s,
                                    "new other vrk.tessaroll @fontsize -9."s,
                                    "new other vrk.tessaroll @fontsize 1e300"s,
                                    "new other vrk.tessaroll @patching_rect 0. 0. 1e300 1e300"s,
                                    "new other vrk.tessaroll @restoreitems"s,
                                    "new other vrk.tessaroll 9e9 1 2 3 4 5 6"s,
                                    "list restore 0 0"s,
                                    "list restore -9 99999999999"s,
                                    "list restore 99999999999 1"s,
                                    "host set list cellh 1e300"s,
                                    "host set list fontsize"s,
                                    "host set list fontname 5"s,
                                    "host set list patching_rect"s,
                                    "host fail 0"s,
                                    "host fail -1"s,
                                    "host click list 99999999999999"s,
                                    "host assist list inlet -1"s,
                                    "host assist list outlet 99999999999"s}) {
        SCOPED_TRACE(line);
        const ScriptResult result = run_script(NEW_LIST + line + "\nhost paint list\nhost view list\nlist bang\n");
        EXPECT_TRUE(result.status == 0 || result.status == 2) << result.status;
        EXPECT_TRUE(result.complaints.empty() == (result.status == 0)) << result.complaints;
        EXPECT_TRUE(result.complaints.empty() || result.complaints.starts_with("vrk-run: ")) << result.complaints;
    }
}

TEST_F(Program, KnowsABoxNoMoreWhenItIsGone) {
    EXPECT_EQ(run_script(NEW_LIST + "host free list\nlist bang\n").status, 2);
    EXPECT_EQ(run_script(NEW_LIST + "host close\nlist bang\n").status, 2);
    EXPECT_EQ(transcript_of(NEW_LIST + "list append a\nhost close\n" + NEW_LIST + "list length\n"), "list:1 0\n");
}

} // namespace
