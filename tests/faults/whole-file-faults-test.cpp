// Both writers of whole files while file operations fail, the disk is full, and signals end the program: the file is
// the old one or the new one.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "faults/files.h"
#include "support/file-writers.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

const std::string before = "before";
const std::string after(5000, 'x');

class WholeFileFaults : public testing::TestWithParam<FileWriter> {
  protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "vrk-test-XXXXXX").string();
        folder_ = mkdtemp(name.data());
        where_ = fs::current_path();
        fs::current_path(folder_);
        make();
        setxattr("file", "user.tag", "red", 3, 0); // where there are such
    }
    void TearDown() override {
        fs::current_path(where_);
        fs::remove_all(folder_);
    }

    static void make() { std::ofstream("file", std::ios::binary) << before; }
    static std::string write(const std::string &content) { return GetParam().write("file", content); }
    static std::string content() {
        std::ifstream file("file", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static Names names() {
        Names all;
        for (const auto &entry : fs::directory_iterator("."))
            all.push_back(entry.path().filename().string());
        std::sort(all.begin(), all.end());
        return all;
    }

    // The signal that ends a program which writes the file, when it gets that fault before its n-th operation; 0 when
    // it has fewer.
    static int signal_that_ends_it(FileFault fault, long n) {
        const pid_t program = fork();
        if (program == 0) {
            const FailingFiles failing(fault, n);
            write(after);
            _exit(0);
        }
        int status = 0;
        waitpid(program, &status, 0);
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }

    // With each operation failing, and with a disk that is full at each kilobyte, check(reason).
    template <typename Check> void with_each_failure(Check check) {
        const auto run = [&](const std::string &what, const auto &failing) {
            SCOPED_TRACE(what);
            make();
            std::string reason;
            bool failed = false;
            {
                const auto scope = failing();
                reason = write(after);
                failed = FailingFiles::has_failed();
            }
            EXPECT_TRUE(failed || reason.empty()) << reason;
            check(reason);
            return failed && !HasFailure();
        };
        for (long n = 1; run("operation " + std::to_string(n), [&] { return FailingFiles(FileFault::error, n); });
             ++n) {
        }
        for (size_t room = 0; run("full at " + std::to_string(room), [&] { return FailingFiles(room); });
             room += 1024) {
        }
    }

  private:
    std::string folder_;
    fs::path where_;
};

TEST_P(WholeFileFaults, AFailureIsToldAndLeavesTheOldFileOrTheNewOne) {
    int failures = 0;
    with_each_failure([&](const std::string &reason) {
        failures += !reason.empty();
        EXPECT_TRUE(content() == after || (!reason.empty() && content() == before)) << reason;
        EXPECT_EQ(names(), Names{"file"});
    });
    EXPECT_GT(failures, 8);
}

TEST_P(WholeFileFaults, TheContentIsOnTheDiskBeforeTheNameAndThenTheFolder) {
    const FailingFiles nothing(FileFault::error, 0);
    EXPECT_EQ(write(after), "");
    EXPECT_STREQ(FailingFiles::order(), "wsrs");
    fs::create_hard_link("file", "other");
    const FailingFiles in_place(FileFault::error, 0);
    EXPECT_EQ(write(after + after), "");
    EXPECT_STREQ(FailingFiles::order(), "wsws") << "first what is longer than before";
}

TEST_P(WholeFileFaults, InPlaceADiskThatIsFullLeavesTheOldFile) {
    fs::create_hard_link("file", "other");
    with_each_failure([&](const std::string &reason) {
        EXPECT_TRUE(content() == after || !reason.empty());
        EXPECT_TRUE(content() == before || reason != "No space left on device") << reason;
        EXPECT_EQ(names(), (Names{"file", "other"}));
    });
}

TEST_P(WholeFileFaults, AKillLeavesTheOldFileOrTheNewOneAndTheNextSaveCleansUp) {
    bool has_left_something = false;
    for (long n = 1; signal_that_ends_it(FileFault::killed, n) == SIGKILL; ++n) {
        EXPECT_TRUE(content() == before || content() == after) << "operation " << n;
        has_left_something |= names() != Names{"file"};
        make();
        EXPECT_EQ(write(before), "");
        EXPECT_EQ(names(), Names{"file"}) << "operation " << n;
    }
    EXPECT_TRUE(has_left_something);
}

TEST_P(WholeFileFaults, ASignalThatEndsTheProgramLeavesNothingBeside) {
    long n = 1;
    for (; signal_that_ends_it(FileFault::terminated, n) == SIGTERM; ++n) {
        EXPECT_TRUE(content() == before || content() == after) << "operation " << n;
        EXPECT_EQ(names(), Names{"file"}) << "operation " << n;
        make();
    }
    EXPECT_GT(n, 5);
}

INSTANTIATE_TEST_SUITE_P(, WholeFileFaults, testing::ValuesIn(file_writers),
                         [](const auto &writer) { return std::string(writer.param.name); });

} // namespace
