// Whether a file has changed since it was looked at.
#include <filesystem>

#include "support/host-test.h"

using namespace maxhost;
namespace fs = std::filesystem;

namespace {

class FileStampTest : public HostTest {
  protected:
    // Writes the file anew without a trace in its time of modification.
    void write_at_the_same_time(const std::string &name, const std::string &content) {
        const fs::file_time_type time = fs::last_write_time(name);
        write_file(name, content);
        fs::last_write_time(name, time);
    }
};

TEST_F(FileStampTest, IsTheSameWhileNothingChanges) {
    write_file("a", "text");
    EXPECT_EQ(stamp_of("a"), stamp_of(folder() + "/a"));
    EXPECT_TRUE(stamp_of("a").exists);
    EXPECT_EQ(stamp_of("missing"), stamp_of("missing/too"));
    EXPECT_FALSE(stamp_of("missing").exists);
}

TEST_F(FileStampTest, TellsAFileFromNone) {
    const FileStamp before = stamp_of("a");
    write_file("a", "");
    EXPECT_NE(stamp_of("a"), before);
}

TEST_F(FileStampTest, TellsAnotherSize) {
    write_file("a", "text");
    const FileStamp before = stamp_of("a");
    write_at_the_same_time("a", "texts");
    EXPECT_NE(stamp_of("a"), before);
}

TEST_F(FileStampTest, TellsAnotherTimeByTheNanosecond) {
    write_file("a", "text");
    const FileStamp before = stamp_of("a");
    fs::last_write_time("a", fs::last_write_time("a") + std::chrono::nanoseconds(1));
    EXPECT_NE(stamp_of("a"), before);
    fs::last_write_time("a", fs::last_write_time("a") + std::chrono::seconds(1) - std::chrono::nanoseconds(1));
    EXPECT_NE(stamp_of("a"), before);
}

TEST_F(FileStampTest, TellsAnotherFileOfTheSameSizeAndTime) {
    write_file("a", "text");
    write_file("b", "text");
    fs::last_write_time("b", fs::last_write_time("a"));
    const FileStamp before = stamp_of("a");
    fs::rename("b", "a");
    EXPECT_NE(stamp_of("a"), before);
}

TEST_F(FileStampTest, FollowsLinks) {
    write_file("a", "text");
    fs::create_symlink("a", "link");
    EXPECT_EQ(stamp_of("link"), stamp_of("a"));
}

TEST_F(FileStampTest, APatcherKnowsWhetherItsFileHasChanged) {
    std::string reason;
    t_object *patcher = new_patcher();
    EXPECT_FALSE(changed_on_disk(patcher)) << "it has no file";
    ASSERT_TRUE(save_patcher(patcher, "p.maxpat", reason)) << reason;
    EXPECT_FALSE(changed_on_disk(patcher));
    const std::string text = read_file("p.maxpat");
    write_file("p.maxpat", text + " ");
    EXPECT_TRUE(changed_on_disk(patcher));
    ASSERT_TRUE(save_patcher(patcher, "p.maxpat", reason)) << reason;
    EXPECT_FALSE(changed_on_disk(patcher));
    free_patcher(patcher);

    patcher = open_patcher("p.maxpat", reason);
    ASSERT_TRUE(patcher) << reason;
    EXPECT_FALSE(changed_on_disk(patcher));
    fs::remove("p.maxpat");
    EXPECT_TRUE(changed_on_disk(patcher));
    write_file("p.maxpat", text + "  ");
    EXPECT_TRUE(changed_on_disk(patcher)) << "it is another file";
    EXPECT_FALSE(save_patcher(patcher, "missing/p.maxpat", reason));
    EXPECT_TRUE(changed_on_disk(patcher)) << "nothing was saved";
    ASSERT_TRUE(save_patcher(patcher, "other.maxpat", reason)) << reason;
    EXPECT_FALSE(changed_on_disk(patcher)) << "its file is another one now";
    free_patcher(patcher);
}

} // namespace
