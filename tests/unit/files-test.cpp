// The host's files: search path, path ids, open files, the save dialog.
#include <filesystem>

#include <sys/stat.h>

#include "ext.h"
#include "support/host-test.h"

using namespace maxhost;

namespace {

class FilesTest : public HostTest {
  protected:
    // Looks a name up; answers "RESULT NAME FOLDER-RELATIVE-PATH".
    std::string locate(const char *name) {
        char buffer[MAX_PATH_CHARS + 1];
        strncpy_zero(buffer, name, sizeof buffer);
        short folder_found = 0;
        t_fourcc type = 0;
        if (locatefile_extended(buffer, &folder_found, &type, nullptr, 0) != 0)
            return "not found";
        char full[MAX_PATH_CHARS];
        EXPECT_EQ(path_topathname(folder_found, buffer, full), 0);
        return std::string(buffer) + " in " + std::filesystem::relative(full, folder()).parent_path().string();
    }

    void make_folder(const char *name) { std::filesystem::create_directories(folder() + "/" + name); }
};

} // namespace

TEST_F(FilesTest, TheSearchPathIsSearchedInOrder) {
    make_folder("first");
    make_folder("second");
    write_file("first/a.xml", "");
    write_file("second/a.xml", "");
    write_file("second/b.xml", "");
    write_file("c.xml", "");
    EXPECT_EQ(locate("a.xml"), "not found");
    set_search_folders({"first", "second"});
    EXPECT_EQ(locate("a.xml"), "a.xml in first");
    EXPECT_EQ(locate("b.xml"), "b.xml in second");
    EXPECT_EQ(locate("c.xml"), "c.xml in ") << "the current folder comes last";
}

TEST_F(FilesTest, AFullPathBecomesTheFileName) {
    make_folder("first");
    const std::string full = write_file("first/a.xml", "");
    EXPECT_EQ(locate(full.c_str()), "a.xml in first");
    EXPECT_EQ(locate("first/a.xml"), "a.xml in first");
}

TEST_F(FilesTest, OnlyRegularFilesAreFiles) {
    make_folder("first");
    mkfifo((folder() + "/pipe.xml").c_str(), 0600);
    EXPECT_EQ(locate("first"), "not found");
    EXPECT_EQ(locate("pipe.xml"), "not found") << "opening it would wait for ever";
    EXPECT_EQ(locate(""), "not found");
    EXPECT_EQ(locate(std::string(2047, 'x').c_str()), "not found");
}

TEST_F(FilesTest, TypesCanBeAskedFor) {
    write_file("a.png", "");
    char name[MAX_PATH_CHARS] = "a.png";
    short found = 0;
    t_fourcc type = 0;
    const t_fourcc text = 0x54455854;
    EXPECT_NE(locatefile_extended(name, &found, &type, &text, 1), 0);
    const t_fourcc picture = 0x504E4720;
    EXPECT_EQ(locatefile_extended(name, &found, &type, &picture, 1), 0);
    EXPECT_EQ(type, picture);
}

TEST_F(FilesTest, PathsAreBuiltAndSplit) {
    short id = 0;
    char name[MAX_FILENAME_CHARS];
    ASSERT_EQ(path_frompathname((folder() + "/new.xml").c_str(), &id, name), 0) << "the file need not exist";
    EXPECT_STREQ(name, "new.xml");
    char full[MAX_PATH_CHARS] = "before";
    EXPECT_NE(path_topathname(id, "new.xml", full), 0);
    EXPECT_STREQ(full, "before");
    EXPECT_EQ(path_topotentialname(id, "new.xml", full, 0), 0);
    EXPECT_EQ(full, folder() + "/new.xml");
    EXPECT_NE(path_topotentialname(id, "", full, 0), 0) << "an empty name is an error";
    EXPECT_EQ(full, folder() + "/new.xml") << "and leaves the buffer as it was";
    EXPECT_NE(path_frompathname("bare.xml", &id, name), 0);
    EXPECT_NE(path_frompathname("/no/such/folder/a.xml", &id, name), 0);
    EXPECT_NE(path_frompathname((folder() + "/").c_str(), &id, name), 0);
}

TEST_F(FilesTest, TheSameFolderHasTheSameId) {
    make_folder("first");
    EXPECT_EQ(folder_id(folder() + "/first"), folder_id(folder() + "/first/../first/"));
    EXPECT_NE(folder_id(folder() + "/first"), folder_id(folder()));
    EXPECT_EQ(folder_id("/no/such/folder"), 0);
}

TEST_F(FilesTest, NamesAreConformedToFullPaths) {
    char to[MAX_PATH_CHARS];
    EXPECT_EQ(path_nameconform("/a/b.xml", to, PATH_STYLE_SLASH, PATH_TYPE_BOOT), 0);
    EXPECT_STREQ(to, "/a/b.xml");
    EXPECT_EQ(path_nameconform("b.xml", to, PATH_STYLE_SLASH, PATH_TYPE_BOOT), 0);
    EXPECT_EQ(to, std::filesystem::current_path().string() + "/b.xml");
    EXPECT_NE(path_nameconform(std::string(3000, 'x').c_str(), to, PATH_STYLE_SLASH, PATH_TYPE_BOOT), 0);
}

TEST_F(FilesTest, FilesAreReadToTheByte) {
    write_file("a.txt", "hello");
    const short id = folder_id(folder());
    t_filehandle file = nullptr;
    ASSERT_EQ(path_opensysfile("a.txt", id, &file, PATH_READ_PERM), 0);
    EXPECT_EQ(files_open(), 1u);
    char text[8] = "";
    t_ptr_size count = 3;
    EXPECT_EQ(sysfile_read(file, &count, text), 0);
    EXPECT_STREQ(text, "hel");
    count = 7;
    EXPECT_NE(sysfile_read(file, &count, text), 0);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(sysfile_close(file), 0);
    EXPECT_NE(sysfile_close(file), 0);
    EXPECT_EQ(take_lines(), (Lines{"misuse: sysfile_close: not an open file"}));
}

TEST_F(FilesTest, FilesAreCreatedOnceAndNeverEmptied) {
    const short id = folder_id(folder());
    t_filehandle file = nullptr;
    ASSERT_EQ(path_createsysfile("new.xml", id, 0x54455854, &file), 0);
    sysfile_close(file);
    write_file("new.xml", "content");
    EXPECT_NE(path_createsysfile("new.xml", id, 0x54455854, &file), 0);
    EXPECT_EQ(read_file(folder() + "/new.xml"), "content");
    EXPECT_NE(path_createsysfile("", id, 0x54455854, &file), 0);
    EXPECT_NE(path_opensysfile("missing", id, &file, PATH_READ_PERM), 0);
    EXPECT_NE(path_opensysfile(".", id, &file, PATH_READ_PERM), 0);
}

TEST_F(FilesTest, FoldersAreMadeAndFound) {
    const short id = folder_id(folder());
    short made = 0, found = 0;
    EXPECT_EQ(path_createfolder(id, "inner", &made), 0);
    EXPECT_NE(path_createfolder(id, "inner", &made), 0);
    EXPECT_EQ(path_getpath(id, "inner", &found), 0);
    EXPECT_EQ(found, made);
    EXPECT_NE(path_getpath(id, "missing", &found), 0);
}

TEST_F(FilesTest, TheSaveDialogIsTheFrontEnds) {
    make_folder("chosen");
    FrontEnd front = front_end();
    std::string answer, asked;
    front.save_dialog = [&](const std::string &prompt, const std::string &proposal) {
        asked = prompt + "|" + proposal;
        return answer;
    };
    start_host(front);
    char name[MAX_FILENAME_CHARS] = "proposal";
    short id = 0;
    t_fourcc type = 0, types[] = {0x54455854};
    saveas_promptset("Save as:");
    EXPECT_NE(saveasdialog_extended(name, &id, &type, types, 1), 0) << "cancelled";
    EXPECT_EQ(asked, "Save as:|proposal");
    answer = "chosen/out.xml";
    EXPECT_EQ(saveasdialog_extended(name, &id, &type, types, 1), 0);
    EXPECT_EQ(asked, "|proposal") << "the prompt is for one time";
    EXPECT_STREQ(name, "out.xml");
    EXPECT_EQ(id, folder_id(folder() + "/chosen"));
    EXPECT_EQ(type, types[0]);
}
