// Every row of docs/compatibility.md names the tests that hold it: they are there.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path root = SOURCE_DIR;

std::string content_of(const fs::path &file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::smatch> matches(const std::string &text, const std::regex &pattern) {
    return {std::sregex_iterator(text.begin(), text.end(), pattern), {}};
}

// "SUITE.NAME" of every test in tests/, and "NAME.script" of every script of the box.
std::set<std::string> names_of_tests() {
    static const std::regex test(R"(TEST(?:_F|_P)?\((\w+),\s*(\w+)\))");
    std::set<std::string> names;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(root / "tests")) {
        if (entry.path().extension() == ".script")
            names.insert(entry.path().filename().string());
        if (entry.path().extension() != ".cpp")
            continue;
        const std::string text = content_of(entry.path());
        for (const std::smatch &found : matches(text, test))
            names.insert(found[1].str() + "." + found[2].str());
    }
    return names;
}

// The rows of the page's tables, each with its cells.
std::vector<std::vector<std::string>> rows_of_page() {
    std::vector<std::vector<std::string>> rows;
    std::ifstream page(root / "docs/compatibility.md");
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("| ") || line.ends_with("| held by |"))
            continue;
        static const std::regex cell(R"(\| ([^|]*) (?=\|))");
        std::vector<std::string> cells;
        for (const std::smatch &found : matches(line, cell))
            cells.push_back(found[1]);
        rows.push_back(cells);
    }
    return rows;
}

} // namespace

TEST(Compatibility, EveryRowNamesTestsThatAreThere) {
    const std::set<std::string> known = names_of_tests();
    const std::vector<std::vector<std::string>> rows = rows_of_page();
    EXPECT_GT(rows.size(), 40u);
    for (const std::vector<std::string> &row : rows) {
        ASSERT_EQ(row.size(), 3u) << testing::PrintToString(row);
        static const std::regex name("`([^`]+)`");
        const std::vector<std::smatch> named = matches(row[2], name);
        EXPECT_FALSE(named.empty()) << row[0];
        for (const std::smatch &found : named)
            EXPECT_TRUE(known.count(found[1])) << found[1] << " of: " << row[0];
    }
}
