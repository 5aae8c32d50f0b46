// vrk-run with patcher files: its argument, and files that are large or wrong.
#include "box/program-fixture.h"

#include <regex>

namespace {

std::string list_file(const std::string &items) {
    return R"({"patcher": {"boxes": [{"box": {"id": "obj-1", "maxclass": "vrk.tessaroll", "varname": "list", )"
           R"("embed": 1, "restoreitems": [ )" +
           items + " ]}}]}}\n";
}

TEST_F(Program, OpensItsPatcherFirst) {
    write_file(current() / "here.maxpat", list_file("\"one\", \"two\""));
    EXPECT_EQ(run({"here.maxpat"}).status, 0);
    EXPECT_EQ(transcript_of("list bang\nhost dirty\n", {"here.maxpat"}), "list:2 two\nlist:1 2\nlist:0 2\ndirty: 0\n");
    const fs::path apart = folder_with("apart", "there.maxpat", list_file("\"three\""));
    write_file(apart / "items.xml", resource_file(7));
    EXPECT_EQ(transcript_of("list bang\nlist read items.xml\nlist length\n", {(apart / "there.maxpat").string()}),
              "list:2 three\nlist:1 1\nlist:0 1\nlist:1 7\n");
    EXPECT_EQ(transcript_of("list length\n", {"--search", apart.string(), "there.maxpat"}), "list:1 1\n");
}

TEST_F(Program, RefusesAPatcherThatItCannotRead) {
    write_file(current() / "wrong.maxpat", "{\"patcher\": [\n}");
    fs::create_directory(current() / "folder.maxpat");
    for (const std::string name : {"missing.maxpat", "wrong.maxpat", "folder.maxpat", "/dev/null"}) {
        const ScriptResult result = run_script("new list vrk.tessaroll\nlist length\n", {name});
        EXPECT_EQ(result.status, 2) << name;
        EXPECT_EQ(result.transcript, "") << name;
        EXPECT_TRUE(std::regex_match(result.complaints, std::regex("vrk-run: (\\./)?" + name + ": .+\n")))
            << result.complaints;
    }
    EXPECT_NE(run({"wrong.maxpat"}).complaints.find("line 2, column 1: "), std::string::npos);
}

TEST_F(Program, StopsAtAPatcherThatCannotBeOpenedOrSaved) {
    for (const std::string line :
         {"host open", "host open missing.maxpat", "host save", "host save missing/folder.maxpat", "host save /",
          "host wait", "host wait soon", "host wait -1", "connect list 0 list 1"}) {
        const ScriptResult result = run_script(NEW_LIST + line + "\n");
        EXPECT_EQ(result.status, 2) << line;
        EXPECT_TRUE(std::regex_match(result.complaints, std::regex("vrk-run: -:2: .+\n"))) << result.complaints;
    }
}

TEST_F(Program, PlaysTheExampleScriptsInTheHelpPatcher) {
    const fs::path package = fs::path(BOX_SCRIPTS_DIR) / "../../package";
    int played = 0;
    for (const fs::directory_entry &entry : fs::directory_iterator(package / "examples")) {
        if (entry.path().extension() != ".script")
            continue;
        const ScriptResult result = run({"--search", (package / "examples").string(), "--script", entry.path().string(),
                                         (package / "help/vrk.tessaroll.maxhelp").string()});
        EXPECT_EQ(result.status, 0) << entry.path();
        EXPECT_EQ(result.complaints, "") << entry.path();
        EXPECT_FALSE(std::regex_search(result.transcript, std::regex("(^|\n)(error|warn): "))) << result.transcript;
        ++played;
    }
    EXPECT_GE(played, 2);
}

TEST_F(Program, KeepsManyItemsInOrder) {
    std::string items;
    for (int i = 0; i < 40000; ++i)
        items += std::string(i ? ", " : "") + "\"item " + std::to_string(i) + "\"";
    write_file(current() / "many.maxpat", list_file(items));
    EXPECT_EQ(transcript_of("list length\nhost save saved.maxpat\nlist 1\nlist bang\n", {"many.maxpat"}),
              "list:1 40000\nlist:2 \"item 0\"\nlist:1 40000\nlist:0 1\n");
    EXPECT_NE(file_text(current() / "saved.maxpat").find("\"restoreitems\": [ " + items + " ]"), std::string::npos);
}

TEST_F(Program, TellsOfSavedItemsThatAreTooLongAndKeepsThem) {
    write_file(current() / "long.maxpat", list_file("\"a\", \"" + std::string(2049, 'x') + "\", \"c\", \"" +
                                                    std::string(2048, 'y') + "\", \"e\""));
    EXPECT_EQ(transcript_of("list length\nhost dirty\n", {"long.maxpat"}),
              "error: list: item 4 to restore > 2048 characters\nlist:1 5\ndirty: 0\n");
}

} // namespace
