// A test that runs vrk-xml as a person does, in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include "support/script-runner.h"

using Words = std::vector<std::string>;

// The words of a command line, at blanks; more of them, which may hold blanks, behind them.
Words words(const std::string &line, const Words &more = {});

class XmlToolTest : public testing::Test {
  protected:
    ScriptResult run(const Words &command, const std::string &input = "");

    // What a command prints that ends well and complains of nothing.
    std::string output(const Words &command, const std::string &input = "");
    std::string output(const std::string &command) { return output(words(command)); }

    // A command that is refused, prints nothing but its complaint, and changes no file.
    void expect_refused(const Words &command, const std::string &complaint);
    void expect_refused(const std::string &command, const std::string &complaint) {
        expect_refused(words(command), complaint);
    }

    // A command line that is wrong; the complaint begins with a text.
    void expect_wrong_usage(const Words &command, const std::string &complaint);
    void expect_wrong_usage(const std::string &command, const std::string &complaint) {
        expect_wrong_usage(words(command), complaint);
    }

    // A document, an XML declaration before it, and what a file holds behind the declaration.
    void write(const std::string &content, const std::string &name = "f.xml");
    std::string content(const std::string &name = "f.xml") const;

    std::filesystem::path path_of(const std::string &name) const { return folder.path() / name; }
    std::vector<std::string> files() const; // names, sorted

    TemporaryFolder folder;
};
