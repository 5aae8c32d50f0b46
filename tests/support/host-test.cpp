// A test with the host running.
#include "support/host-test.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <utility>

using namespace maxhost;

namespace {

std::mutex lines_mutex; // lines come from both threads

std::string kind(ConsoleLine line) {
    return line == ConsoleLine::error ? "error: " : line == ConsoleLine::warn ? "warn: " : "post: ";
}

std::string new_folder() {
    std::string name = (std::filesystem::temp_directory_path() / "vrk-test-XXXXXX").string();
    return mkdtemp(name.data());
}

} // namespace

void HostTest::SetUp() {
    folder_before_ = std::filesystem::current_path().string();
    folder_ = new_folder();
    std::filesystem::current_path(folder_);
    start_host(front_end());
}

void HostTest::TearDown() {
    stop_host();
    std::filesystem::current_path(folder_before_);
    std::filesystem::remove_all(folder_);
    set_search_folders({});
    const MemoryInUse left = memory_in_use();
    EXPECT_EQ(left.blocks, 0u);
    EXPECT_EQ(left.objects, 0u);
    EXPECT_EQ(files_open(), 0u);
}

FrontEnd HostTest::front_end() {
    const auto add = [this](const std::string &line) {
        std::lock_guard lock(lines_mutex);
        lines.push_back(line);
    };
    FrontEnd front;
    front.console = [add](ConsoleLine line, const std::string &object, const std::string &text) {
        add(kind(line) + object + ": " + text);
    };
    front.output = [add](const std::string &object, long outlet, t_symbol *selector, std::span<const t_atom> atoms) {
        add(object + ":" + std::to_string(outlet) + " " + selector->s_name + (atoms.empty() ? "" : " ") +
            print_atoms(atoms));
    };
    front.refused = [add](const std::string &object, const std::string &attribute, t_max_err result) {
        add(object + "." + attribute + " refused " + std::to_string(result));
    };
    front.misuse = [add](const char *function, const std::string &reason) {
        add(std::string("misuse: ") + function + ": " + reason);
    };
    front.alert = [add](const std::string &text) { add("alert: " + text); };
    front.trace = [add](const std::string &text) { add("trace: " + text); };
    return front;
}

void HostTest::trace_calls(unsigned families) {
    FrontEnd front = front_end();
    front.traced = families;
    start_host(front);
    take_lines();
}

std::vector<std::string> HostTest::take_lines() {
    std::lock_guard lock(lines_mutex);
    return std::exchange(lines, {});
}

std::string HostTest::write_file(const std::string &name, const std::string &content) {
    const std::string path = folder_ + "/" + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

std::string HostTest::read_file(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
