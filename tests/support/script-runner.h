// Runs scripts through vrk-run and compares their transcripts with what was expected.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// What one run of the program takes.
struct ScriptRun {
    std::filesystem::path program;
    std::vector<std::string> options; ///< handed to the program as they are, in order
    std::string input;                ///< what the program reads on standard input
    std::filesystem::path folder;     ///< its current folder
};

/// What one run of the program gave.
struct ScriptResult {
    int status = -1; ///< exit status, or 128 and the signal's number when a signal ended it; -1 when it did not start
    std::string transcript; ///< standard output
    std::string complaints; ///< standard error
};

/// A new empty folder, as a path without symbolic links, that is removed with all that is in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    const std::filesystem::path &path() const { return folder; }

  private:
    std::filesystem::path folder;
};

/// Runs the program and waits for its end. The environment is handed on, so that sanitizers keep their options.
ScriptResult script_run(const ScriptRun &run);

/// The options that a script asks for in its leading lines `//! OPTION…`, blank separated. The folder or file after
/// `--search` and `--plugin` is taken relative to `folder`.
std::vector<std::string> script_options(const std::string &script, const std::filesystem::path &folder);

/// `text` with every path of `names` (path, name) replaced by its name, in the order of `names`.
std::string script_with_names(std::string text,
                              const std::vector<std::pair<std::filesystem::path, std::string>> &names);

/// The lines in which `actual` differs from `expected`: "-" before a line that is missing, "+" before one too many,
/// each group under the number of the expected line. Empty when the texts are equal.
std::string script_difference(const std::string &expected, const std::string &actual);

/// The whole content of a file. A file that cannot be read throws std::filesystem::filesystem_error.
std::string file_text(const std::filesystem::path &file);

/// Makes a file, or replaces what is in it. A failure throws std::filesystem::filesystem_error.
void write_file(const std::filesystem::path &file, const std::string &text);
