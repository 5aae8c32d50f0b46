// Includes run one way: api <- kernel <- files <- ui <- embed <- apps, and
// api <- jattributes, pathname <- jxmlfile <- jxml-resfile <- jlist <- tessaroll. The two towers do not know each
// other.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

namespace fs = std::filesystem;

namespace {

// What a part of the tree may include, beside itself and system headers.
const std::map<std::string, std::set<std::string>> allowed{
    {"host/api", {}},
    {"host/kernel", {"host/api"}},
    {"host/files", {"host/api", "host/kernel"}},
    {"host/ui", {"host/api", "host/kernel", "host/files"}},
    {"host/ui/boxes", {"host/api", "host/kernel", "host/ui"}},
    {"host/embed", {"host/api", "host/kernel", "host/files", "host/ui", "host/ui/boxes"}},
    {"apps/script", {"host/api", "host/embed"}},
    {"apps/run", {"host/api", "host/embed", "apps/script"}},
    {"apps/window", {"host/api", "host/embed", "apps/script", "vrk.owners", "vrk.pathname", "vrk.jxmlfile"}},
    {"apps/xml", {"host/api", "host/embed", "vrk.owners", "vrk.pathname", "vrk.jxmlfile", "vrk.jxml-resfile"}},
    {"vrk.owners", {"host/api"}},
    {"vrk.jattributes", {"host/api"}},
    {"vrk.numbers", {}},
    {"vrk.utf8", {}},
    {"vrk.wholefile", {}},
    {"vrk.wholefile-posix", {"vrk.wholefile"}},
    {"vrk.wholefile-windows", {"vrk.wholefile"}},
    {"vrk.pathname", {"host/api", "vrk.owners", "vrk.wholefile", "vrk.jxml-encoding"}},
    {"vrk.jxml-bounds", {}},
    {"vrk.jxml-encoding", {"vrk.owners", "vrk.jxml-bounds"}},
    {"vrk.jxml-parse", {"host/api", "vrk.owners", "vrk.jxml-bounds", "vrk.jxml-encoding"}},
    {"vrk.jxml-index", {}},
    {"vrk.jxmlfile",
     {"host/api", "vrk.owners", "vrk.numbers", "vrk.pathname", "vrk.wholefile", "vrk.jxml-parse", "vrk.jxml-index",
      "vrk.utf8"}},
    {"vrk.jxml-resfile", {"host/api", "vrk.owners", "vrk.pathname", "vrk.wholefile", "vrk.jxmlfile", "vrk.utf8"}},
    {"vrk.jlist",
     {"host/api", "vrk.owners", "vrk.jattributes", "vrk.pathname", "vrk.jxmlfile", "vrk.jxml-resfile", "vrk.utf8"}},
    {"vrk.jlist-writing", {"host/api", "vrk.owners", "vrk.pathname", "vrk.wholefile", "vrk.jxml-resfile", "vrk.jlist"}},
    {"tessaroll",
     {"host/api", "vrk.owners", "vrk.jattributes", "vrk.pathname", "vrk.jxmlfile", "vrk.jxml-resfile", "vrk.jlist"}},
};

// The part that a file belongs to: its folder, or in vrk-includes its module.
std::string part_of(const fs::path &file) {
    const fs::path folder = file.parent_path();
    return folder == "vrk-includes" ? file.stem().string() : folder.string();
}

// The file of the tree that an #include names, relative to the root; empty for system headers.
fs::path resolve(const fs::path &root, const fs::path &from, const std::string &name) {
    for (const fs::path &folder :
         {from.parent_path(), fs::path("host"), fs::path("host/api"), fs::path("vrk-includes"), fs::path("apps")})
        if (fs::exists(root / folder / name))
            return (folder / name).lexically_normal();
    return {};
}

// The name between the quotes or brackets of an #include line; empty for any other line.
std::string included_name(const std::string &line) {
    const size_t directive = line.find("#include");
    const size_t open = line.find_first_of("\"<", directive);
    if (directive != line.find_first_not_of(" \t") || directive == line.npos || open == line.npos)
        return {};
    return line.substr(open + 1, line.find_first_of("\">", open + 1) - open - 1);
}

std::set<std::string> included_parts(const fs::path &root, const fs::path &file) {
    std::set<std::string> parts;
    std::ifstream lines(root / file);
    for (std::string line; std::getline(lines, line);)
        if (const std::string name = included_name(line); !name.empty())
            if (const fs::path found = resolve(root, file, name); !found.empty())
                parts.insert(part_of(found));
    return parts;
}

} // namespace

TEST(Includes, RunOneWay) {
    const fs::path root(SOURCE_DIR);
    size_t files = 0;
    for (const char *folder : {"host", "apps", "vrk-includes", "tessaroll"}) {
        for (const auto &entry : fs::recursive_directory_iterator(root / folder)) {
            if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp")
                continue;
            const fs::path file = fs::relative(entry.path(), root);
            const std::string part = part_of(file);
            ASSERT_TRUE(allowed.contains(part)) << file << " belongs to no part that is known";
            for (const std::string &other : included_parts(root, file))
                EXPECT_TRUE(other == part || allowed.at(part).contains(other)) << file << " includes from " << other;
            ++files;
        }
    }
    EXPECT_GT(files, 50u);
}
