// Names, texts and numbers of items at their limits and beyond.
#include "box/program-fixture.h"

namespace {

/// More words than 16 bits can count, and what a box answers whose items they have become.
const std::string MANY_WORDS = [] {
    std::string words;
    for (int i = 1; i <= 32770; ++i)
        words += " i" + std::to_string(i);
    return words;
}();
const std::string ASK_BEHIND_MANY_WORDS = "list bang\nlist 32768, bang\n";
const std::string ANSWER_BEHIND_MANY_WORDS = "list:2 i32770\nlist:1 32770\nlist:0 32770\n"
                                             "list:2 i32768\nlist:1 32770\nlist:0 32768\n";

TEST_F(Program, ReadsAFileOf32767Items) {
    write_file(current() / "big.xml", resource_file(32767));
    EXPECT_EQ(transcript_of(NEW_LIST + "list read big.xml\nlist length\nlist bang\nlist end, bang\n"),
              "list:1 32767\n"
              "list:2 \"item 0\"\nlist:1 32767\nlist:0 1\n"
              "list:2 \"item 32766\"\nlist:1 32767\nlist:0 32767\n");
}

TEST_F(Program, RefusesToCountMoreThan32767Items) {
    // 65541 would be 5 in 16 bits
    for (const long count : {32768, 65536, 65541}) {
        write_file(current() / "big.xml", resource_file(count));
        EXPECT_EQ(transcript_of(NEW_LIST + "list append old\nlist read big.xml\nlist length\nlist bang\nlist dump\n"
                                           "list append new\nlist bang\n"),
                  "error: list: cannot count resources of type string (more than 32767)\n"
                  "list:1 0\n"
                  "list:2 new\nlist:1 1\nlist:0 1\n")
            << count;
    }
}

TEST_F(Program, Appends32767ItemsAndOneMore) {
    std::string script = NEW_LIST;
    for (int i = 1; i <= 32767; ++i)
        script += "list append \"item " + std::to_string(i) + "\"\n";
    script += "list bang\nlist append \"one more\"\nlist bang\nlist 16384, bang\n";
    EXPECT_EQ(transcript_of(script), "list:2 \"item 32767\"\nlist:1 32767\nlist:0 32767\n"
                                     "list:2 \"one more\"\nlist:1 32768\nlist:0 32768\n"
                                     "list:2 \"item 16384\"\nlist:1 32768\nlist:0 16384\n");
}

TEST_F(Program, RestoresMoreThan32767ItemsOfABox) {
    EXPECT_EQ(transcript_of("new list vrk.tessaroll @restoreitems" + MANY_WORDS + "\n" + ASK_BEHIND_MANY_WORDS),
              ANSWER_BEHIND_MANY_WORDS);
}

TEST_F(Program, RestoresMoreThan32767ItemsOfAMessage) {
    EXPECT_EQ(transcript_of(NEW_LIST + "list restoreitems" + MANY_WORDS + "\n" + ASK_BEHIND_MANY_WORDS),
              ANSWER_BEHIND_MANY_WORDS);
}

TEST_F(Program, RefusesNamesOfMoreThan2048Characters) {
    const std::string accepted(2048, 'x'), refused(2049, 'x');
    EXPECT_EQ(transcript_of(NEW_LIST + "list append kept\nlist read " + accepted + "\nlist length\n"),
              "error: list: can't find " + accepted + "\nlist:1 1\n");
    EXPECT_EQ(transcript_of(NEW_LIST + "list append kept\nlist read " + refused + "\nlist length\n"),
              "error: list: path too long! (" + refused + ")\nlist:1 1\n");
}

TEST_F(Program, KeepsAPendingReadWhenALongNameIsRefused) {
    write_file(current() / "two.xml", resource_file(2));
    const std::string refused(2049, 'x');
    EXPECT_EQ(transcript_of(NEW_LIST + "list read two.xml, read " + refused + "\nlist length\n"),
              "error: list: path too long! (" + refused + ")\nlist:1 2\n");
}

TEST_F(Program, SurvivesNamesOfEveryLength) {
    std::string script = NEW_LIST + "list append kept\n";
    for (const size_t length : {255, 256, 511, 512, 513, 1023, 1024, 2047, 2048, 2049, 4096, 20000}) {
        script += "list read " + std::string(length, 'x') + "\n";
        script += "list read /" + std::string(length - 1, 'x') + "\n";
        script += "list read d/" + std::string(length - 2, 'x') + "\n";
        script += "list write " + std::string(length, 'x') + "\n";
        script += "list write /no-such-folder/" + std::string(length, 'x') + "\n";
        script += "host answer " + std::string(length, 'x') + "\nlist write\n";
        script += "host set list fontname " + std::string(length, 'x') + "\n";
        script += "host set list root " + std::string(length, 'x') + "\n";
        script += "host set list xmlpath " + std::string(length, 'x') + " " + std::string(length, 'x') + "\n";
    }
    const std::string transcript = transcript_of(script + "host paint list\nlist length\n");
    EXPECT_EQ(transcript.substr(transcript.rfind("list:")), "list:1 1\n");
}

TEST_F(Program, SurvivesLongNamesInAPath) {
    write_file(current() / "two.xml", resource_file(2));
    for (const size_t length : {100, 128, 512, 1000, 1022, 1023, 1024, 1025, 2047, 2048, 5000}) {
        const std::string word(length, 'x');
        const ScriptResult result = run_script(NEW_LIST + "host set list xmlpath " + word + " " + word +
                                               "\nlist read two.xml\nlist append a\n" + "list dump\n");
        EXPECT_EQ(result.status, 0) << length;
        EXPECT_EQ(result.complaints, "") << length;
        EXPECT_TRUE(result.transcript.ends_with("list:2 a\nlist:0 1\n")) << length;
    }
}

TEST_F(Program, PaintsTheFirst2047BytesOfAText) {
    const auto painted = [this](size_t length) {
        const std::string text = std::string(length - 1, 'a') + "z";
        return transcript_of(NEW_LIST + "list append " + text + "\nlist append end\nhost paint list\nlist 1, bang\n");
    };
    const auto expected = [](const std::string &shown, const std::string &text) {
        return "paint: 1 text 2. 12. \"" + shown + "\" 0. 0. 0. 1.\n" +
               "paint: 2 text 2. 12. \"end\" 0. 0. 0. 1.\n"
               "paint: 2 fill 0. 0. 104. 14. 0.05 0.91 0.91 0.3\n"
               "list:2 " +
               text + "\nlist:1 2\nlist:0 1\n";
    };
    const std::string longest = std::string(2046, 'a') + "z";
    EXPECT_EQ(painted(2047), expected(longest, longest));
    EXPECT_EQ(painted(2048), expected(std::string(2047, 'a'), std::string(2047, 'a') + "z"));
    EXPECT_EQ(painted(10000), expected(std::string(2047, 'a'), std::string(9999, 'a') + "z"));
}

TEST_F(Program, EndsMessagesThatRunInACircle) {
    const std::string start = NEW_LIST + "connect list 2 list\n";
    for (const std::string message : {"bang", "dump"}) {
        const ScriptResult result =
            run_script(start + "list append " + message + "\nlist " + message + "\nlist clear\nlist length\n");
        EXPECT_EQ(result.status, 0) << message;
        EXPECT_TRUE(result.transcript.ends_with("list:1 0\nlist:1 0\n")) << message;
    }
}

TEST_F(Program, EndsADumpWhoseNumbersAskForTheNextDump) {
    const ScriptResult result = run_script(NEW_LIST + "new again message @text dump\nconnect list 0 again\n"
                                                      "connect again 0 list\nlist append a\nlist append b\nlist dump\n"
                                                      "list clear\nlist length\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.transcript.ends_with("list:1 0\nlist:1 0\n"));
}

} // namespace
