// The package as it is installed: complete, in agreement with itself, and its external can be loaded.
#include <gtest/gtest.h>

#include <png.h>

#include <filesystem>
#include <fstream>
#include <set>

#include <libxml/parser.h>
#include <nlohmann/json.hpp>

#include "support/script-runner.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

class Package : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        installed = new TemporaryFolder;
        const ScriptResult result =
            script_run({CMAKE_PROGRAM,
                        {"--install", BUILD_DIR, "--component", "package", "--prefix", installed->path().string()},
                        "",
                        installed->path()});
        ASSERT_EQ(result.status, 0) << result.complaints;
    }
    static void TearDownTestSuite() { delete installed; }

    static fs::path folder() { return installed->path() / "vrk.tessaroll"; }
    static json read_json(const fs::path &name) { return json::parse(file_text(folder() / name)); }

    static inline TemporaryFolder *installed;
};

std::set<std::string> names_in(const fs::path &folder) {
    std::set<std::string> names;
    for (const auto &entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

// How often a key is written in a JSON file, which a parser would not tell.
size_t count_key(const std::string &text, const std::string &key) {
    size_t count = 0;
    for (size_t at = text.find("\"" + key + "\":"); at != text.npos; at = text.find("\"" + key + "\":", at + 1))
        ++count;
    return count;
}

std::string digest_on_page(const fs::path &page) {
    const std::string text = file_text(page);
    const size_t begin = text.find("<digest>") + 8;
    return text.substr(begin, text.find("</digest>") - begin);
}

TEST_F(Package, HasItsFolders) {
    std::set<std::string> expected{"docs",       "examples",     "externals",         "icon.png", "interfaces",
                                   "license.md", "object-icons", "package-info.json", "readme.md"};
    if (fs::exists(SOURCE_DIR "/package/help"))
        expected.insert("help");
    EXPECT_EQ(names_in(installed->path()), std::set<std::string>{"vrk.tessaroll"});
    EXPECT_EQ(names_in(folder()), expected);
    EXPECT_EQ(names_in(folder() / "docs"), std::set<std::string>{"vrk.tessaroll.maxref.xml"});
    EXPECT_EQ(names_in(folder() / "object-icons"), std::set<std::string>{"vrk.tessaroll.svg"});
    EXPECT_EQ(names_in(folder() / "externals"), std::set<std::string>{fs::path(VRK_PLUGIN).filename().string()});
    EXPECT_TRUE(fs::exists(folder() / "examples/general-midi.xml"));
    EXPECT_EQ(file_text(folder() / "license.md"), file_text(SOURCE_DIR "/LICENSE"));
}

TEST_F(Package, DescribesItself) {
    const json info = read_json("package-info.json");
    const std::string text = file_text(folder() / "package-info.json");
    EXPECT_EQ(info["name"], "vrk.tessaroll");
    EXPECT_EQ(count_key(text, "name"), 1u);
    EXPECT_EQ(info["version"], PACKAGE_VERSION);
    EXPECT_EQ(info["os"]["macintosh"]["platform"], json({"x64", "aarch64"}));
    EXPECT_EQ(info["os"]["windows"]["platform"], json({"x64"}));
    EXPECT_EQ(info["package_extra"]["reverse_domain"], "org.vrk");
    for (const char *generated : {"filelist", "c74install", "installdate"})
        EXPECT_FALSE(info.contains(generated)) << generated;
}

TEST_F(Package, SaysTheSameInItsInterfaces) {
    const json entry = read_json("interfaces/vrk.tessaroll-obj-qlookup.json").at("vrk.tessaroll");
    EXPECT_EQ(entry["digest"], digest_on_page(folder() / "docs/vrk.tessaroll.maxref.xml"));
    const std::string page = file_text(folder() / "docs/vrk.tessaroll.maxref.xml");
    for (const json &other : entry["seealso"])
        EXPECT_NE(page.find("<seealso name=\"" + other.get<std::string>() + "\"/>"), page.npos) << other;
    const json database = read_json("interfaces/vrk.tessaroll.db.json").at("maxdb");
    EXPECT_EQ(database["aliases"], json({{"tessaroll", "vrk.tessaroll"}}));
    EXPECT_EQ(database["externals"]["vrk.tessaroll"]["package"], read_json("package-info.json")["name"]);
}

TEST_F(Package, HasAnIconOfTheRightSize) {
    png_image icon{};
    icon.version = PNG_IMAGE_VERSION;
    ASSERT_TRUE(png_image_begin_read_from_file(&icon, (folder() / "icon.png").c_str())) << icon.message;
    EXPECT_EQ(icon.width, 500u);
    EXPECT_EQ(icon.height, 500u);
    png_image_free(&icon);
    xmlDoc *drawing = xmlReadFile((folder() / "object-icons/vrk.tessaroll.svg").c_str(), nullptr, XML_PARSE_NONET);
    ASSERT_TRUE(drawing);
    EXPECT_STREQ(reinterpret_cast<const char *>(xmlDocGetRootElement(drawing)->name), "svg");
    xmlFreeDoc(drawing);
}

TEST_F(Package, HasAnExternalThatCanBeLoaded) {
    const fs::path external = folder() / "externals" / fs::path(VRK_PLUGIN).filename();
    const ScriptResult result =
        script_run({VRK_RUN_PROGRAM,
                    {"--plugin", external.string(), "--search", (folder() / "examples").string(), "--script", "-"},
                    "new list tessaroll\nlist read general-midi.xml\nlist bang\nlist length\n",
                    installed->path()});
    EXPECT_EQ(result.status, 0) << result.complaints;
    EXPECT_NE(result.transcript.find("list:1 128"), std::string::npos) << result.transcript;
}

} // namespace
