// The cross-builds get sources from where the machine gets its packages: scripts/apt-sources.sh.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/script-runner.h"

namespace fs = std::filesystem;

namespace {

class AptSources : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(folder.path() / "from/sources.list.d");
        fs::create_directories(folder.path() / "to");
    }

    void write(const std::string &name, const std::string &text) { write_file(folder.path() / "from" / name, text); }

    // What is written for the distribution "stork" of a file of that name.
    std::string written(const std::string &name) {
        const std::string script = "set -euo pipefail; source '" SOURCE_DIR "/scripts/apt-sources.sh'; "
                                   "write_package_sources from stork to";
        const ScriptResult result = script_run({"/bin/bash", {"-c", script}, "", folder.path()});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.complaints, "");
        return file_text(folder.path() / "to" / name);
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(AptSources, AreTheLinesOfTheDistribution) {
    write("sources.list", "# deb http://not.here/ stork main\n"
                          "deb http://mirror.example/debian stork main contrib\n"
                          "deb-src http://mirror.example/debian stork main\n"
                          "deb [arch=amd64 signed-by=/keys/a.gpg] http://mirror.example/debian stork-updates main\n"
                          "deb http://others.example/ nodistro main\n"
                          "deb http://others.example/ cloud-stork main\n");
    EXPECT_EQ(written("sources.list"), "deb-src http://mirror.example/debian stork main contrib\n"
                                       "deb-src [arch=amd64 signed-by=/keys/a.gpg] http://mirror.example/debian "
                                       "stork-updates main\n");
}

TEST_F(AptSources, AreTheParagraphsOfTheDistribution) {
    write("sources.list.d/debian.sources", "Types: deb\n# a mirror\nURIs: http://mirror.example/debian\n"
                                           "Suites: stork stork-updates\nComponents: main\nSigned-By: /keys/a.gpg\n\n"
                                           "Types: deb-src\nURIs: http://mirror.example/debian\nSuites: stork\n");
    write("sources.list.d/others.sources", "Types: deb\nURIs: http://others.example/\nSuites: nodistro\n");
    EXPECT_EQ(written("debian.sources"), "Types: deb-src\n# a mirror\nURIs: http://mirror.example/debian\n"
                                         "Suites: stork stork-updates\nComponents: main\nSigned-By: /keys/a.gpg\n\n");
    EXPECT_EQ(written("others.sources"), "");
}
