// install-package.sh puts a package where Max looks for it, and asks before it replaces one.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "support/script-runner.h"

namespace fs = std::filesystem;
using Options = std::vector<std::string>;

namespace {

class Install : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(package() / "externals");
        write_file(package() / "package-info.json", "{}");
        write_file(package() / "externals/new", "new");
        fs::create_directories(home() / "Documents");
    }

    ScriptResult run(Options options, const std::string &input = "") {
        options.insert(options.begin(), {"HOME=" + home().string(), SOURCE_DIR "/install-package.sh"});
        return script_run({"/usr/bin/env", options, input, folder.path()});
    }
    ScriptResult install(const std::string &input = "") { return run({package().string()}, input); }

    fs::path home() const { return folder.path() / "a home"; }
    fs::path package() const { return folder.path() / "built/vrk.tessaroll"; }
    fs::path packages(const char *version) const { return home() / "Documents" / version / "Packages"; }

    static bool holds_new(const fs::path &packages) {
        return file_text(packages / "vrk.tessaroll/externals/new") == "new" &&
               std::distance(fs::directory_iterator(packages), fs::directory_iterator()) == 1;
    }
    // A package of before, which is gone when it is replaced.
    fs::path make_old(const char *version) {
        const fs::path old = packages(version) / "vrk.tessaroll/old";
        fs::create_directories(old);
        return old;
    }

    TemporaryFolder folder;
};

TEST_F(Install, FindsTheNewestMax) {
    fs::create_directories(home() / "Documents/Max 8");
    fs::create_directories(home() / "Documents/Max 9");
    const ScriptResult result = install();
    EXPECT_EQ(result.status, 0) << result.complaints;
    EXPECT_EQ(result.transcript, "installed " + (packages("Max 9") / "vrk.tessaroll").string() + "\n");
    EXPECT_TRUE(holds_new(packages("Max 9")));
    EXPECT_FALSE(fs::exists(packages("Max 8")));
}

TEST_F(Install, TakesAnyFolder) {
    const fs::path other = folder.path() / "other folder";
    EXPECT_EQ(run({"--to", other.string(), package().string()}).status, 0);
    EXPECT_TRUE(holds_new(other));
}

TEST_F(Install, ReplacesAfterAYes) {
    const fs::path old = make_old("Max 9");
    EXPECT_EQ(install("y\n").status, 0);
    EXPECT_TRUE(holds_new(packages("Max 9")));
    EXPECT_FALSE(fs::exists(old));
}

TEST_F(Install, ReplacesUnaskedWhenToldSo) {
    const fs::path old = make_old("Max 9");
    const ScriptResult result = run({"--yes", package().string()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.transcript.find("Replace"), std::string::npos);
    EXPECT_TRUE(holds_new(packages("Max 9")));
    EXPECT_FALSE(fs::exists(old));
}

TEST_F(Install, LeavesWhatIsThereWithoutAYes) {
    const fs::path old = make_old("Max 9");
    for (const char *answer : {"n\n", "\n", ""}) {
        const ScriptResult result = install(answer);
        EXPECT_EQ(result.status, 1) << answer;
        EXPECT_NE(result.transcript.find("left as it is"), std::string::npos);
        EXPECT_TRUE(fs::exists(old)) << answer;
        EXPECT_FALSE(fs::exists(packages("Max 9") / "vrk.tessaroll/externals")) << answer;
    }
}

TEST_F(Install, NeedsAMaxAndAPackage) {
    EXPECT_EQ(install().status, 1); // no Max
    const ScriptResult result = run({"--to", home().string(), (folder.path() / "no package").string()});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.complaints.find("is no package"), std::string::npos) << result.complaints;
    EXPECT_EQ(run({"--bogus"}).status, 2);
    EXPECT_EQ(run({"--to"}).status, 2);
}

} // namespace
