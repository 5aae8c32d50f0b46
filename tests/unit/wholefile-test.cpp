// What both writers of whole files promise.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "support/file-writers.h"
#include "support/longest-file.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

constexpr uid_t nobody = 65534;
constexpr uid_t somebody = 12345;

// Root may do everything; until the scope ends it is nobody who writes.
class AsNobody {
  public:
    AsNobody() {
        if (was_root_ && (setegid(nobody) != 0 || seteuid(nobody) != 0))
            ADD_FAILURE() << "root cannot become nobody";
    }
    ~AsNobody() {
        if (was_root_ && (seteuid(0) != 0 || setegid(0) != 0))
            ADD_FAILURE() << "nobody cannot become root again";
    }

  private:
    const bool was_root_ = geteuid() == 0;
};

class WholeFile : public testing::TestWithParam<FileWriter> {
  protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "vrk-test-XXXXXX").string();
        folder_ = mkdtemp(name.data());
        chmod(folder_.c_str(), 0777); // for nobody
        before_ = fs::current_path();
        fs::current_path(folder_);
    }
    void TearDown() override {
        fs::current_path(before_);
        fs::remove_all(folder_);
    }

    static std::string write(const std::string &path, const std::string &content) {
        return GetParam().write(path, content);
    }
    const std::string &folder() const { return folder_; }

    static void make(const std::string &name, const std::string &content, mode_t mode = 0644) {
        std::ofstream(name, std::ios::binary) << content;
        chmod(name.c_str(), mode);
    }
    static std::string content(const std::string &name) {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static struct stat status(const std::string &name) {
        struct stat found = {};
        lstat(name.c_str(), &found);
        return found;
    }
    static Names names(const std::string &where = ".") {
        Names all;
        for (const auto &entry : fs::directory_iterator(where))
            all.push_back(entry.path().filename().string());
        std::sort(all.begin(), all.end());
        return all;
    }

    static bool set_attribute(const std::string &file, const char *name, const Bytes &value) {
        return setxattr(file.c_str(), name, value.data(), value.size(), 0) == 0;
    }
    static Bytes attribute(const std::string &file, const char *name) {
        Bytes value(256);
        const ssize_t size = getxattr(file.c_str(), name, value.data(), value.size());
        value.resize(static_cast<size_t>(std::max<ssize_t>(size, 0)));
        return value;
    }

  private:
    std::string folder_;
    fs::path before_;
};

// ---- content

TEST_P(WholeFile, MakesAFile) {
    const mode_t mask = umask(027);
    EXPECT_EQ(write(folder() + "/new", "text"), "");
    umask(mask);
    EXPECT_EQ(content("new"), "text");
    EXPECT_EQ(status("new").st_mode & 07777, 0640u) << "what the user's mask leaves";
    EXPECT_EQ(names(), Names{"new"});
}

TEST_P(WholeFile, PutsOtherContentIntoItsPlace) {
    make("file", "before");
    const std::string large(1000000, 'x');
    for (const std::string &next : {std::string("after"), std::string(), large, std::string("\0\n", 2)}) {
        EXPECT_EQ(write("file", next), "");
        EXPECT_EQ(content("file"), next);
    }
    EXPECT_EQ(names(), Names{"file"});
}

TEST_P(WholeFile, IsWrittenBesideAndRenamed) {
    make("file", "before");
    std::ifstream reader("file");
    EXPECT_EQ(write("file", "after"), "");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "before") << "who reads it goes on reading it";
}

TEST_P(WholeFile, LongNamesAreWritten) {
    const std::string longest(255, 'x');
    EXPECT_EQ(write(longest, "text"), "");
    std::string letters(1, 'x'); // the name would be cut within one
    while (letters.size() < 200)
        letters += "é";
    EXPECT_EQ(write(letters, "text"), "");
    EXPECT_EQ(names(), (Names{longest, letters}));
    EXPECT_EQ(write(longest + "x", "text"), "File name too long");
}

TEST_P(WholeFile, AFileThatIsOpenIsWrittenOnWhereItsDescriptorIsNamed) {
    const auto put = [](int file, const char *text) { return ::write(file, text, 4) == 4; };
    const int file = open("file", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    for (const int standard : {STDOUT_FILENO, STDERR_FILENO}) {
        const int before = dup(standard);
        dup2(file, standard);
        EXPECT_EQ(write(standard == STDOUT_FILENO ? "/dev/stdout" : "/dev/stderr", "out"), "");
        dup2(before, standard);
        close(before);
    }
    EXPECT_TRUE(put(file, "head"));
    EXPECT_EQ(write("/dev/fd/" + std::to_string(file), "text"), "");
    EXPECT_EQ(write("/proc/self/fd/" + std::to_string(file), "more"), "");
    EXPECT_TRUE(put(file, "tail"));
    close(file);
    EXPECT_EQ(content("file"), "outoutheadtextmoretail");
    EXPECT_EQ(names(), Names{"file"});
}

// ---- what is kept

TEST_P(WholeFile, KeepsPermissions) {
    for (const mode_t mode : {0600, 0640, 0666, 0755, 06755}) {
        make("file", "before", mode);
        EXPECT_EQ(write("file", "after"), "");
        EXPECT_EQ(status("file").st_mode & 07777, mode);
    }
}

TEST_P(WholeFile, KeepsOwnerAndGroup) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give files away";
    make("file", "before", 0660);
    ASSERT_EQ(chown("file", somebody, somebody + 1), 0);
    EXPECT_EQ(write("file", "after"), "");
    EXPECT_EQ(status("file").st_uid, somebody);
    EXPECT_EQ(status("file").st_gid, somebody + 1);
    EXPECT_EQ(status("file").st_mode & 07777, 0660u);
}

TEST_P(WholeFile, KeepsExtendedAttributes) {
    make("file", "before");
    if (!set_attribute("file", "user.tag", {'r', 'e', 'd'}) || !set_attribute("file", "user.empty", {}))
        GTEST_SKIP() << "no extended attributes here";
    const ino_t before = status("file").st_ino;
    EXPECT_EQ(write("file", "after"), "");
    EXPECT_NE(status("file").st_ino, before) << "it is another file";
    EXPECT_EQ(attribute("file", "user.tag"), (Bytes{'r', 'e', 'd'}));
    EXPECT_GE(getxattr("file", "user.empty", nullptr, 0), 0);
}

// Version 2; then tag, permissions and id of each entry: owner, the user 1000, group, mask, others.
Bytes access_list(unsigned char of_user) {
    return {2, 0,    0,    0,    1,    0,    6,    0, 0xFF, 0xFF, 0xFF, 0xFF, 2,    0,    of_user,
            0, 0xE8, 3,    0,    0,    4,    0,    4, 0,    0xFF, 0xFF, 0xFF, 0xFF, 0x10, 0,
            6, 0,    0xFF, 0xFF, 0xFF, 0xFF, 0x20, 0, 0,    0,    0xFF, 0xFF, 0xFF, 0xFF};
}

TEST_P(WholeFile, KeepsAccessLists) {
    make("file", "before");
    const Bytes list = access_list(6);
    if (!set_attribute("file", "system.posix_acl_access", list))
        GTEST_SKIP() << "no access lists here";
    EXPECT_EQ(write("file", "after"), "");
    EXPECT_EQ(attribute("file", "system.posix_acl_access"), list);
    EXPECT_EQ(status("file").st_mode & 0777, 0660u) << "the mask stands for the group";
}

TEST_P(WholeFile, TakesNoAccessListFromTheFolder) {
    fs::create_directory("inner");
    make("inner/file", "before", 0640);
    if (!set_attribute("inner", "system.posix_acl_default", access_list(7)))
        GTEST_SKIP() << "no access lists here";
    EXPECT_EQ(write("inner/file", "after"), "");
    EXPECT_EQ(attribute("inner/file", "system.posix_acl_access"), Bytes());
    EXPECT_EQ(status("inner/file").st_mode & 0777, 0640u);
    EXPECT_EQ(write("inner/new", "text"), "");
    EXPECT_NE(attribute("inner/new", "system.posix_acl_access"), Bytes()) << "a new file has that of new files";
}

// ---- links

TEST_P(WholeFile, LinksStayLinks) {
    fs::create_directory("inner");
    make("inner/file", "before");
    fs::create_symlink("file", "inner/link");
    fs::create_symlink("inner/link", "link");
    fs::create_symlink(folder() + "/link", "absolute");
    for (const char *path : {"link", "inner/link", "absolute"}) {
        EXPECT_EQ(write(path, path), "");
        EXPECT_EQ(content("inner/file"), path);
        EXPECT_TRUE(fs::is_symlink(path));
    }
    EXPECT_EQ(names("inner"), (Names{"file", "link"}));
}

TEST_P(WholeFile, ALinkThatLeadsNowhereHasTheFileMadeThatItNames) {
    fs::create_directory("inner");
    fs::create_symlink("inner/new", "link");
    fs::create_symlink("missing/new", "lost");
    EXPECT_EQ(write("link", "text"), "");
    EXPECT_TRUE(fs::is_symlink("link"));
    EXPECT_EQ(content("inner/new"), "text");
    EXPECT_EQ(write("lost", "text"), "No such file or directory");
    EXPECT_EQ(names(), (Names{"inner", "link", "lost"}));
}

TEST_P(WholeFile, LinksInACircleAreRefused) {
    fs::create_symlink("a", "b");
    fs::create_symlink("b", "a");
    EXPECT_EQ(write("a", "text"), "Too many levels of symbolic links");
}

TEST_P(WholeFile, AllNamesOfAFileKeepNamingIt) {
    make("file", "before");
    fs::create_hard_link("file", "other");
    for (const char *next : {"something longer", "short", ""}) {
        EXPECT_EQ(write("file", next), "");
        EXPECT_EQ(content("file"), next);
        EXPECT_EQ(content("other"), next);
    }
    EXPECT_EQ(status("file").st_nlink, 2u);
}

// ---- rights

TEST_P(WholeFile, AFileThatMayOnlyBeReadIsRefused) {
    make("file", "before", 0444);
    const AsNobody nobody_writes;
    EXPECT_EQ(write("file", "after"), "Permission denied");
    EXPECT_EQ(content("file"), "before");
}

TEST_P(WholeFile, InAFolderInWhichNothingMayBeMadeItIsWrittenInPlace) {
    fs::create_directory("inner");
    make("inner/file", "before", 0666);
    chmod("inner", 0555);
    {
        const AsNobody nobody_writes;
        EXPECT_EQ(write("inner/file", "after"), "");
        EXPECT_EQ(write("inner/new", "text"), "Permission denied");
    }
    EXPECT_EQ(content("inner/file"), "after");
    chmod("inner", 0755);
    EXPECT_EQ(names("inner"), Names{"file"});
}

TEST_P(WholeFile, AFileOfSomebodyElseStaysHis) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make files for others";
    for (const mode_t of_folder : {0777, 01777}) {
        fs::remove_all("inner");
        fs::create_directory("inner");
        chmod("inner", of_folder);
        make("inner/file", "before", 0666);
        ASSERT_EQ(chown("inner/file", somebody, somebody), 0);
        const struct stat before = status("inner/file");
        {
            const AsNobody nobody_writes;
            EXPECT_EQ(write("inner/file", "after"), "");
        }
        EXPECT_EQ(content("inner/file"), "after");
        EXPECT_EQ(status("inner/file").st_uid, somebody);
        EXPECT_EQ(status("inner/file").st_ino, before.st_ino);
        EXPECT_EQ(names("inner"), Names{"file"});
    }
}

// ---- what is not a regular file

TEST_P(WholeFile, FoldersAreRefused) {
    fs::create_directory("inner");
    EXPECT_EQ(write("inner", "text"), "Is a directory");
    EXPECT_EQ(write("inner/", "text"), "Is a directory");
    EXPECT_EQ(write("missing/file", "text"), "No such file or directory");
    EXPECT_EQ(write("missing/", "text"), "No such file or directory");
    make("file", "");
    EXPECT_EQ(write("file/inner", "text"), "Not a directory");
    EXPECT_EQ(write("", "text"), "No such file or directory");
}

TEST_P(WholeFile, DevicesAreWrittenTo) {
    EXPECT_EQ(write("/dev/null", "text"), "");
    EXPECT_EQ(write("/dev/full", "text"), "No space left on device");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_P(WholeFile, APipeThatNobodyReadsIsNotWaitedFor) {
    mkfifo("pipe", 0600);
    EXPECT_EQ(write("pipe", "text"), "Broken pipe");
    EXPECT_TRUE(fs::is_fifo("pipe"));
}

TEST_P(WholeFile, APipeGetsAllOfTheContent) {
    mkfifo("pipe", 0600);
    const std::string text(1000000, 'x'); // more than a pipe takes at once
    const int reader = open("pipe", O_RDONLY | O_NONBLOCK);
    fcntl(reader, F_SETFL, 0);
    std::string got;
    std::thread reading([&] {
        char piece[4096];
        while (got.size() < text.size()) // which also ends the waiting for a writer
            if (const ssize_t now = read(reader, piece, sizeof piece); now > 0)
                got.append(piece, static_cast<size_t>(now));
    });
    EXPECT_EQ(write("pipe", text), "");
    reading.join();
    EXPECT_EQ(got, text);
    close(reader);
}

TEST_P(WholeFile, AReaderThatGoesAwayEndsTheWritingButNotTheProgram) {
    mkfifo("pipe", 0600);
    const int reader = open("pipe", O_RDONLY | O_NONBLOCK);
    fcntl(reader, F_SETFL, 0);
    std::thread reading([&] {
        char byte;
        while (read(reader, &byte, 1) != 1) {
        }
        close(reader);
    });
    EXPECT_EQ(write("pipe", std::string(1000000, 'x')), "Broken pipe");
    reading.join();
    sigset_t pending;
    sigpending(&pending);
    EXPECT_FALSE(sigismember(&pending, SIGPIPE));
}

TEST_P(WholeFile, ASocketIsRefused) {
    const int listening = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {AF_UNIX, "socket"};
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(write("socket", "text"), "Operation not supported");
    close(listening);
}

TEST_P(WholeFile, ALinkToWhatIsOpenIsWrittenToWhatIsOpen) {
    const int file = open("file", O_RDWR | O_CREAT, 0600);
    fs::remove("file");
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    EXPECT_EQ(write(path, "text"), "");
    char text[5] = "";
    EXPECT_EQ(pread(file, text, 4, 0), 4);
    EXPECT_STREQ(text, "text");
    close(file);
    EXPECT_EQ(names(), Names());
}

// ---- no room

TEST_P(WholeFile, WithoutRoomTheFileIsAsItWas) {
    make("file", "before");
    make("linked", "before");
    fs::create_hard_link("linked", "other");
    const std::string large(100000, 'x');
    {
        const LongestFile limit(50000);
        EXPECT_EQ(write("file", large), "File too large");
        EXPECT_EQ(write("new", large), "File too large");
        EXPECT_EQ(write("linked", large), "File too large") << "in place";
    }
    EXPECT_EQ(content("file"), "before");
    EXPECT_EQ(content("linked"), "before");
    EXPECT_EQ(names(), (Names{"file", "linked", "other"}));
}

// ---- what is left behind

TEST_P(WholeFile, WhatAWriterThatIsGoneHasLeftIsRemoved) {
    make(".file.vrk-123-0", "half");
    make(".file.vrk-123-17", "half", 0444);
    EXPECT_EQ(write(folder() + "/file", "text"), "");
    EXPECT_EQ(names(), Names{"file"});
    make(".file.vrk-" + std::to_string(getpid()) + "-0", "of a process that had the same number");
    EXPECT_EQ(write("file", "text"), "");
    EXPECT_EQ(names(), Names{"file"});
}

TEST_P(WholeFile, WhatIsBeingWrittenStays) {
    make(".file.vrk-123-0", "half");
    const std::string mine = ".file.vrk-" + std::to_string(getpid()) + "-0";
    make(mine, "half");
    const int writers[] = {open(".file.vrk-123-0", O_RDWR), open(mine.c_str(), O_RDWR)};
    for (const int writer : writers)
        ASSERT_EQ(flock(writer, LOCK_EX), 0);
    EXPECT_EQ(write("file", "text"), "");
    Names all{".file.vrk-123-0", mine, "file"};
    std::sort(all.begin(), all.end());
    EXPECT_EQ(names(), all);
    EXPECT_EQ(content(mine), "half");
    for (const int writer : writers)
        close(writer);
}

TEST_P(WholeFile, NothingElseIsTakenForWhatWasLeft) {
    const Names others{".file.vrk-",    ".file.vrk-1",    ".file.vrk-1-", ".file.vrk-1-2x", ".file.vrk--2",
                       ".file.vrk-x-2", ".other.vrk-1-2", "file.vrk-1-2", "target"};
    for (const std::string &name : others)
        make(name, "");
    fs::create_symlink("target", ".file.vrk-1-2");
    EXPECT_EQ(write("file", "text"), "");
    Names all = others;
    all.insert(all.end(), {".file.vrk-1-2", "file"});
    std::sort(all.begin(), all.end());
    EXPECT_EQ(names(), all);
}

TEST_P(WholeFile, WhenNoNameIsLeftItIsRefused) {
    std::vector<int> writers;
    for (int number = 0; number < 100; ++number) {
        const std::string name = ".file.vrk-" + std::to_string(getpid()) + "-" + std::to_string(number);
        writers.push_back(open(name.c_str(), O_RDWR | O_CREAT, 0600));
        flock(writers.back(), LOCK_EX);
    }
    EXPECT_EQ(write("file", "text"), "File exists");
    for (const int writer : writers)
        close(writer);
    EXPECT_EQ(write("file", "text"), "");
    EXPECT_EQ(names(), Names{"file"});
}

INSTANTIATE_TEST_SUITE_P(, WholeFile, testing::ValuesIn(file_writers),
                         [](const auto &writer) { return std::string(writer.param.name); });

// ---- empty files

TEST(EmptyFile, IsRemoved) {
    const fs::path before = fs::current_path();
    std::string folder = (fs::temp_directory_path() / "vrk-test-XXXXXX").string();
    fs::current_path(mkdtemp(folder.data()));
    std::ofstream("empty").flush();
    std::ofstream("full") << "text";
    fs::create_directory("folder");
    for (const char *name : {"empty", "full", "folder", "missing"})
        vrk_remove_empty_file(name);
    EXPECT_FALSE(fs::exists("empty"));
    EXPECT_TRUE(fs::exists("full"));
    EXPECT_TRUE(fs::exists("folder"));
    fs::current_path(before);
    fs::remove_all(folder);
}

} // namespace
