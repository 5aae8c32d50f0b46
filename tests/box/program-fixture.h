// What the tests of vrk-run share: a program that runs scripts in an empty folder.
#pragma once

#include "support/script-runner.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using Options = std::vector<std::string>;

inline const std::string NEW_LIST = "new list vrk.tessaroll\n";

inline std::string script_of(const std::vector<std::string> &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += line + "\n";
    return text;
}

/// A resource file of `count` texts, numbered from 0.
inline std::string resource_file(long count) {
    std::string text = "<?xml version=\"1.0\"?>\n<resourcefile><resource>";
    for (long i = 0; i < count; ++i)
        text += "<string number=\"" + std::to_string(i) + "\">item " + std::to_string(i) + "</string>";
    return text + "</resource></resourcefile>\n";
}

class Program : public testing::Test {
  protected:
    ScriptResult run(const Options &options, const std::string &input = "") {
        return script_run({VRK_RUN_PROGRAM, options, input, current()});
    }
    ScriptResult run_script(const std::string &script, Options options = {}) {
        options.insert(options.end(), {"--script", "-"});
        return run(options, script);
    }
    /// The transcript of a script that runs to its end without a complaint.
    std::string transcript_of(const std::string &script, const Options &options = {}) {
        const ScriptResult result = run_script(script, options);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.complaints, "");
        return result.transcript;
    }
    const fs::path &current() const { return folder.path(); }
    /// A folder with one file in it, apart from the current one.
    fs::path folder_with(const std::string &name, const std::string &file, const std::string &text) {
        const fs::path made = elsewhere.path() / name;
        fs::create_directory(made);
        write_file(made / file, text);
        return made;
    }

    TemporaryFolder folder;
    TemporaryFolder elsewhere;
};
