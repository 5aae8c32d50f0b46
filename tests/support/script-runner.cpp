// Runs scripts through vrk-run and compares their transcripts with what was expected.
#include "support/script-runner.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

extern char **environ;

namespace {

using Lines = std::vector<std::string>;

[[noreturn]] void file_failure(const std::string &what, const std::filesystem::path &file) {
    throw std::filesystem::filesystem_error(what, file, std::error_code(errno, std::generic_category()));
}

/// Where a run's input and output stand: files, so that neither side ever waits for the other.
struct Streams {
    std::filesystem::path input, output, errors;
};

int spawn(const ScriptRun &run, const Streams &streams, pid_t &child) {
    std::vector<std::string> words{run.program.string()};
    words.insert(words.end(), run.options.begin(), run.options.end());
    std::vector<char *> arguments;
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    constexpr int WRITE = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, streams.input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, streams.output.c_str(), WRITE, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, streams.errors.c_str(), WRITE, 0600);
    posix_spawn_file_actions_addchdir_np(&actions, run.folder.c_str());
    const int failure = posix_spawn(&child, run.program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return failure;
}

int wait_for(pid_t child) {
    int state = 0;
    while (waitpid(child, &state, 0) < 0)
        if (errno != EINTR)
            return -1;
    return WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
}

Lines lines_of(const std::string &text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// A line as part of a report: one of thousands of bytes would hide the others.
std::string shortened(const std::string &line) {
    constexpr size_t LONGEST = 300;
    if (line.size() <= LONGEST)
        return line;
    return line.substr(0, LONGEST) + "… (" + std::to_string(line.size()) + " bytes)";
}

/// Lengths of the longest common subsequences of the ends of both texts: [i][j] for those from line i and line j on.
std::vector<std::vector<size_t>> common_lengths(const Lines &expected, const Lines &actual) {
    std::vector<std::vector<size_t>> lengths(expected.size() + 1, std::vector<size_t>(actual.size() + 1, 0));
    for (size_t i = expected.size(); i-- > 0;)
        for (size_t j = actual.size(); j-- > 0;)
            lengths[i][j] =
                expected[i] == actual[j] ? lengths[i + 1][j + 1] + 1 : std::max(lengths[i + 1][j], lengths[i][j + 1]);
    return lengths;
}

std::string line_difference(const Lines &expected, const Lines &actual) {
    const auto lengths = common_lengths(expected, actual);
    std::string report;
    bool in_group = false;
    for (size_t i = 0, j = 0; i < expected.size() || j < actual.size();) {
        const bool both = i < expected.size() && j < actual.size();
        if (both && expected[i] == actual[j]) {
            in_group = false;
            ++i, ++j;
            continue;
        }
        if (!in_group)
            report += "at line " + std::to_string(i + 1) + ":\n";
        in_group = true;
        if (j == actual.size() || (both && lengths[i + 1][j] >= lengths[i][j + 1]))
            report += "  - " + shortened(expected[i++]) + "\n";
        else
            report += "  + " + shortened(actual[j++]) + "\n";
    }
    return report;
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    std::string name =
        (std::filesystem::canonical(std::filesystem::temp_directory_path()) / "vrk-test-XXXXXX").string();
    if (!mkdtemp(name.data()))
        file_failure("cannot make a temporary folder", name);
    folder = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

ScriptResult script_run(const ScriptRun &run) {
    const TemporaryFolder folder;
    const Streams streams{folder.path() / "input", folder.path() / "output", folder.path() / "errors"};
    write_file(streams.input, run.input);
    ScriptResult result;
    pid_t child = 0;
    if (const int failure = spawn(run, streams, child)) {
        result.complaints = run.program.string() + ": " + std::generic_category().message(failure);
        return result;
    }
    result.status = wait_for(child);
    result.transcript = file_text(streams.output);
    result.complaints = file_text(streams.errors);
    return result;
}

std::vector<std::string> script_options(const std::string &script, const std::filesystem::path &folder) {
    std::vector<std::string> options;
    std::istringstream stream(script);
    for (std::string line; std::getline(stream, line) && line.starts_with("//!");) {
        std::istringstream words(line.substr(3));
        for (std::string word; words >> word;) {
            const bool is_path = !options.empty() && (options.back() == "--search" || options.back() == "--plugin");
            options.push_back(is_path ? (folder / word).lexically_normal().string() : word);
        }
    }
    return options;
}

std::string script_with_names(std::string text,
                              const std::vector<std::pair<std::filesystem::path, std::string>> &names) {
    for (const auto &[path, name] : names)
        for (size_t at = 0; (at = text.find(path.string(), at)) != std::string::npos; at += name.size())
            text.replace(at, path.string().size(), name);
    return text;
}

std::string script_difference(const std::string &expected, const std::string &actual) {
    if (expected == actual)
        return "";
    const std::string report = line_difference(lines_of(expected), lines_of(actual));
    return report.empty() ? "the texts differ in the line end at their end\n" : report;
}

std::string file_text(const std::filesystem::path &file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        file_failure("cannot read", file);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

void write_file(const std::filesystem::path &file, const std::string &text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
        file_failure("cannot write", file);
}
