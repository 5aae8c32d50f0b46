// Runs every script of this folder and compares its transcript with the expected one beside it.
#include "support/script-runner.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

const fs::path SCRIPTS = BOX_SCRIPTS_DIR;

std::vector<fs::path> all_scripts() {
    std::vector<fs::path> scripts;
    for (const fs::directory_entry &entry : fs::directory_iterator(SCRIPTS))
        if (entry.path().extension() == ".script")
            scripts.push_back(entry.path());
    std::sort(scripts.begin(), scripts.end());
    return scripts;
}

std::string test_name(const testing::TestParamInfo<fs::path> &info) {
    std::string name = info.param.stem().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

class BoxScript : public testing::TestWithParam<fs::path> {};

TEST_P(BoxScript, GivesItsTranscript) {
    const fs::path script = GetParam();
    const TemporaryFolder current;
    const fs::path data = fs::canonical(SCRIPTS / "data");
    std::vector<std::string> options{"--search", data.string()};
    for (const std::string &option : script_options(file_text(script), SCRIPTS))
        options.push_back(option);
    options.insert(options.end(), {"--script", script.string()});

    const ScriptResult result = script_run({VRK_RUN_PROGRAM, options, "", current.path()});

    const std::string transcript = script_with_names(result.transcript, {{current.path(), "$TMP"}, {data, "$DATA"}});
    const std::string difference =
        script_difference(file_text(fs::path(script).replace_extension(".expected")), transcript);
    EXPECT_TRUE(difference.empty()) << difference;
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.complaints, "");
}

INSTANTIATE_TEST_SUITE_P(All, BoxScript, testing::ValuesIn(all_scripts()), test_name);

TEST(BoxScripts, EveryExpectedTranscriptHasItsScript) {
    for (const fs::directory_entry &entry : fs::directory_iterator(SCRIPTS)) {
        const bool is_transcript = entry.path().extension() == ".expected";
        EXPECT_TRUE(!is_transcript || fs::exists(fs::path(entry.path()).replace_extension(".script"))) << entry.path();
    }
}

} // namespace
