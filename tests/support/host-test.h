// A test with the host running: what happens is written down, and nothing may be left behind.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "embed/host.h"

class HostTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override; // fails when blocks, objects or open files are left

    // "error: NAME: TEXT" and so on; "NAME:OUTLET ATOMS"; "misuse: FUNCTION: REASON"; "alert: TEXT"; "trace: …"
    std::vector<std::string> lines;

    // What is in `lines`, which then is empty.
    std::vector<std::string> take_lines();

    // A fresh folder, which is the current one during the test.
    const std::string &folder() const { return folder_; }

    // Writes a file into that folder and answers its full path.
    std::string write_file(const std::string &name, const std::string &content);
    static std::string read_file(const std::string &path);

    maxhost::FrontEnd front_end(); // for tests that change a function of it

    // From now on the calls of these families are written down.
    void trace_calls(unsigned families);

  private:
    std::string folder_;
    std::string folder_before_;
};

using Lines = std::vector<std::string>;
inline const Lines no_lines;
