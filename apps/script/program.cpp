// What the programs on the host have in common.
#include "program.h"

#include <filesystem>

#include "embed/host.h"

namespace fs = std::filesystem;

bool load_plugins(std::vector<std::string> files, std::string &reason) {
    if (files.empty())
        files.push_back(beside_this_program(VRK_PLUGIN_FILE));
    for (const std::string &file : files)
        if (!maxhost::load_plugin(file, reason))
            return false;
    return true;
}

std::string beside_this_program(const std::string &name) {
    std::error_code error;
    return (fs::read_symlink("/proc/self/exe", error).parent_path() / name).string();
}

std::string in_current_folder(const std::string &name) {
    std::error_code error;
    const bool is_here = !fs::path(name).has_parent_path() && fs::exists(name, error);
    return is_here ? "./" + name : name;
}
