// What a box takes it gives back, and it stays whole when memory runs out.
#include "box/program-fixture.h"

#include <regex>

namespace {

/// The answers to "host memory" in a transcript.
std::vector<std::string> memory_lines(const std::string &transcript) {
    std::vector<std::string> lines;
    const std::regex line("memory: \\d+ blocks, \\d+ objects");
    for (std::sregex_iterator at(transcript.begin(), transcript.end(), line), end; at != end; ++at)
        lines.push_back(at->str());
    return lines;
}

TEST_F(Program, GivesBackWhatItTakes) {
    write_file(current() / "two.xml", resource_file(2));
    write_file(current() / "gap.xml", "<?xml version=\"1.0\"?>\n<resourcefile><resource>"
                                      "<string number=\"0\">a</string><string number=\"2\">b</string>"
                                      "</resource></resourcefile>\n");
    write_file(current() / "none.xml", resource_file(0));
    const std::string life = script_of({"new list vrk.tessaroll @embed 1 @restoreitems a b",
                                        "list append a",
                                        "list insert 1 b",
                                        "list replace 1 c",
                                        "list restoreitem d",
                                        "list restoreitems e f",
                                        "list delete 1",
                                        "list bang",
                                        "list dump",
                                        "list read two.xml",
                                        "list append x, delete 1, read two.xml",
                                        "list read missing.xml",
                                        "list read gap.xml",
                                        "list delete 1",
                                        "list read none.xml",
                                        "list append y",
                                        "list read two.xml",
                                        "list write given.xml",
                                        "host answer chosen.xml",
                                        "list write",
                                        "host answer cancel",
                                        "list write",
                                        "host get list selectcolor",
                                        "host get list xmlpath",
                                        "host set list selectcolor 1 1",
                                        "host set list root other",
                                        "list restore 9 4",
                                        "host paint list",
                                        "host click list 1",
                                        "list clear",
                                        "list clear",
                                        "list append z",
                                        "host free list",
                                        "host memory"});
    const std::vector<std::string> memory = memory_lines(transcript_of(life + life + life));
    ASSERT_EQ(memory.size(), 3U);
    EXPECT_EQ(memory[1], memory[0]);
    EXPECT_EQ(memory[2], memory[0]);
}

TEST_F(Program, GivesBackTheRowsOfEveryEdit) {
    std::string script = NEW_LIST + "list append a\nlist append b\nhost memory\n";
    for (int i = 0; i < 20; ++i)
        script += "list append c\nlist insert 1 d\nlist replace 2 e\nlist delete 3\nlist delete 1\n";
    const std::vector<std::string> memory = memory_lines(transcript_of(script + "host memory\n"));
    ASSERT_EQ(memory.size(), 2U);
    EXPECT_EQ(memory[1], memory[0]);
}

/// Puts a failure that has not come yet so far away that it never comes.
const std::string NOTHING_FAILS = "host fail 1000000000\n";

/// Runs `before`, `line` with its N-th allocation failing, and `after`, for N from 1 until the transcript is the one
/// without a failure five times in a row, and hands every transcript on to `check`.
class MemoryRunsOut : public Program {
  protected:
    template <typename Check>
    void fail_each_allocation(const std::string &before, const std::string &line, const std::string &after,
                              Check check) {
        const std::string whole = transcript_of(before + line + "\n" + after);
        int undisturbed = 0;
        for (int n = 1; undisturbed < 5; ++n) {
            ASSERT_LT(n, 300) << "allocations without end: " << line;
            const std::string failing = "host fail " + std::to_string(n) + "\n" + line + "\n" + NOTHING_FAILS;
            const ScriptResult result = run_script(before + failing + after);
            undisturbed = result.transcript == whole ? undisturbed + 1 : 0;
            SCOPED_TRACE("allocation " + std::to_string(n) + " of " + line + " failed:\n" + result.transcript);
            EXPECT_EQ(result.status, 0);
            EXPECT_EQ(result.complaints, "");
            check(result.transcript, whole);
        }
    }
    const std::string filled = NEW_LIST + "list append one\nlist append two\nlist append three\nlist 2\n";
    const std::string dumped = "list:2 one\nlist:0 1\nlist:2 two\nlist:0 2\nlist:2 three\nlist:0 3\n";
};

/// Something on the console: an item that is lost is never lost without a word.
bool complains(const std::string &transcript) { return transcript.find("error: ") != std::string::npos; }

TEST_F(MemoryRunsOut, InAnAppend) {
    fail_each_allocation(filled, "list append four", "list dump\n",
                         [this](const std::string &transcript, const std::string &whole) {
                             if (transcript == whole)
                                 return;
                             EXPECT_TRUE(transcript.ends_with(dumped));
                             EXPECT_TRUE(complains(transcript));
                         });
}

TEST_F(MemoryRunsOut, InAnInsertOrAReplace) {
    for (const std::string line : {"list insert 2 new", "list replace 2 new"})
        fail_each_allocation(filled, line, "list dump\n",
                             [this](const std::string &transcript, const std::string &whole) {
                                 if (transcript == whole)
                                     return;
                                 EXPECT_TRUE(transcript.ends_with(dumped));
                                 EXPECT_TRUE(complains(transcript));
                             });
}

TEST_F(MemoryRunsOut, InADelete) {
    fail_each_allocation(filled, "list delete 2", "list dump\n",
                         [this](const std::string &transcript, const std::string &whole) {
                             if (transcript != whole) {
                                 EXPECT_TRUE(transcript.ends_with(dumped));
                             }
                         });
}

TEST_F(MemoryRunsOut, InARestore) {
    for (const std::string line : {"list restoreitem four", "list restoreitems four five"})
        fail_each_allocation(filled, line, "list dump\n",
                             [this](const std::string &transcript, const std::string &whole) {
                                 if (transcript == whole)
                                     return;
                                 EXPECT_NE(transcript.find(dumped), std::string::npos);
                                 EXPECT_TRUE(complains(transcript));
                             });
}

TEST_F(MemoryRunsOut, InARead) {
    write_file(current() / "two.xml", resource_file(2));
    fail_each_allocation(filled, "list read two.xml", "list dump\nlist append after\nlist end, bang\n",
                         [](const std::string &transcript, const std::string &whole) {
                             EXPECT_NE(transcript.find("list:2 after\n"), std::string::npos);
                             EXPECT_TRUE(transcript == whole || complains(transcript));
                         });
}

TEST_F(MemoryRunsOut, InAWrite) {
    fail_each_allocation(
        filled, "list write out.xml", "list dump\n", [this](const std::string &transcript, const std::string &) {
            EXPECT_TRUE(transcript.ends_with(dumped));
            const fs::path file = current() / "out.xml";
            if (!complains(transcript)) {
                ASSERT_TRUE(fs::exists(file));
                EXPECT_NE(file_text(file).find("<string number=\"2\">three</string>"), std::string::npos);
            }
            fs::remove(file);
        });
}

TEST_F(MemoryRunsOut, InPaintingAndAttributes) {
    for (const std::string line :
         {"host paint list", "host get list selectcolor", "host get list xmlpath", "host get list root",
          "host get list frame", "host set list selectcolor 1. 0. 0. 1.", "list restore 9 4", "list bang", "list dump",
          "host click list 1", "list clear", "host free list"})
        fail_each_allocation(filled, line, "new other vrk.tessaroll\nother append a\nother dump\n",
                             [](const std::string &transcript, const std::string &) {
                                 EXPECT_TRUE(transcript.ends_with("other:2 a\nother:0 1\n"));
                             });
}

TEST_F(MemoryRunsOut, WhenABoxIsMade) {
    const std::string whole = transcript_of(NEW_LIST + "list append a\nlist dump\n");
    bool made = false;
    for (int n = 1; n <= 300 && !made; ++n) {
        SCOPED_TRACE(n);
        const std::string failing = "host fail " + std::to_string(n) + "\n" + NEW_LIST;
        const ScriptResult result = run_script(failing + "host memory\nlist append a\nlist dump\n");
        const bool refused = result.status == 2 && result.complaints.find("vrk-run: -:2: ") != std::string::npos;
        EXPECT_TRUE(refused || (result.status == 0 && result.complaints.empty())) << result.complaints;
        made = n > 30 && result.status == 0 && result.transcript.ends_with(whole);
    }
    EXPECT_TRUE(made);
}

} // namespace
