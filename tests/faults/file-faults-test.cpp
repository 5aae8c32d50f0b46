// Each file operation fails once, and the disk is full at each kilobyte: what was on the disk is there as before or
// replaced as a whole, nothing is left beside it, and nothing in memory is lost but what a read takes away.
#include "vrk.jxml-resfile.h" // libxml2's headers come before the host's

#include <algorithm>
#include <filesystem>

#include "faults/files.h"
#include "faults/list-box.h"

using namespace maxhost;
namespace fs = std::filesystem;

namespace {

const Lines three = {"one", "two", "three"};

const std::string beginning = "<?xml version=\"1.0\"?>\n<resourcefile><resource>";
const std::string ending = "</resource></resourcefile>\n";

std::string resources(const Lines &texts) {
    std::string all = beginning;
    for (size_t i = 0; i < texts.size(); ++i)
        all += "<string number=\"" + std::to_string(i) + "\">" + texts[i] + "</string>";
    return all + ending;
}

// More than a few kilobytes.
Lines many_texts() {
    Lines all;
    for (int i = 0; i < 200; ++i)
        all.push_back("a text that takes some room on the disk, number " + std::to_string(i));
    return all;
}

class FileFaults : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        register_list_box();
    }

    void make_with(const Lines &texts) {
        patcher = new_patcher();
        box = new_list_box(patcher);
        send("embed 1");
        send("xmlpath resource string");
        for (const std::string &text : texts) {
            t_atom atoms[2];
            atom_setsym(atoms, gensym("append"));
            atom_setsym(atoms + 1, gensym(text.c_str()));
            send_message(box, atoms);
        }
        drain_queue();
    }
    void send(const std::string &message) {
        send_message(box, parse_atoms(message));
        drain_queue();
    }

    Lines items() const { return items_of(box); }

    bool has_error() const {
        return std::any_of(lines.begin(), lines.end(),
                           [](const std::string &line) { return line.starts_with("error: "); });
    }

    // The files in the current folder, by name.
    Lines files() const {
        Lines names;
        for (const auto &each : fs::directory_iterator(folder()))
            names.push_back(each.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    // "-" when there is no such file.
    std::string content(const std::string &name) const { return fs::exists(name) ? read_file(name) : "-"; }

    // prepare(), operation() and check(failed) with each operation failing in each way, and then with a disk that is
    // full at each kilobyte.
    template <typename Prepare, typename Operation, typename Check>
    void sweep(Prepare prepare, Operation operation, Check check) {
        const auto run = [&](const std::string &what, const auto &failing) {
            SCOPED_TRACE(what);
            prepare();
            take_lines();
            bool failed;
            {
                const auto scope = failing();
                operation();
                failed = FailingFiles::has_failed();
            }
            drain_queue();
            check(failed);
            free_patcher(patcher);
            EXPECT_EQ(files_open(), 0u);
            ++runs;
            return failed;
        };
        for (const FileFault fault : {FileFault::error, FileFault::short_read, FileFault::end_of_file}) {
            harmless = fault == FileFault::short_read;
            for (long n = 1; run("operation " + std::to_string(n), [&] { return FailingFiles(fault, n); }); ++n)
                if (HasFailure())
                    return;
        }
        harmless = false;
        for (size_t room = 0; run("disk full at " + std::to_string(room), [&] { return FailingFiles(room); });
             room += 1024)
            if (HasFailure())
                return;
        RecordProperty("runs", runs);
    }

    bool harmless = false; // what happens is no failure
    int runs = 0;
    t_object *patcher = nullptr;
    t_object *box = nullptr;
    std::string reason;
};

TEST_F(FileFaults, ReadingAList) {
    const Lines many = many_texts();
    write_file("many.xml", resources(many));
    sweep([&] { make_with(three); }, [this] { send("read many.xml"); },
          [&](bool failed) {
              const Lines now = items();
              EXPECT_TRUE(now == many || (failed && !harmless && has_error())) << testing::PrintToString(lines);
              EXPECT_TRUE(now == many || now == three || now.empty());
              EXPECT_EQ(content("many.xml"), resources(many));
          });
}

TEST_F(FileFaults, WritingAListOverAFile) {
    const Lines many = many_texts();
    sweep([&] { make_with(many), write_file("out.xml", "before"); }, [this] { send("write out.xml"); },
          [&](bool failed) {
              EXPECT_EQ(content("out.xml"),
                        failed && !harmless && content("out.xml") == "before" ? "before" : resources(many));
              EXPECT_EQ(files(), Lines{"out.xml"});
              EXPECT_EQ(items(), many);
          });
}

TEST_F(FileFaults, WritingAListToANewFile) {
    const Lines many = many_texts();
    FrontEnd front = front_end();
    front.save_dialog = [](const std::string &, const std::string &) { return "chosen.xml"; };
    start_host(front);
    sweep([&] { make_with(many), fs::remove("chosen.xml"); }, [this] { send("write"); },
          [&](bool failed) {
              const std::string now = content("chosen.xml");
              EXPECT_TRUE(now == resources(many) || (failed && (now.empty() || now == "-"))) << now;
              EXPECT_EQ(files(), now == "-" ? Lines() : Lines{"chosen.xml"});
              EXPECT_EQ(items(), many);
          });
}

TEST_F(FileFaults, ResourceFiles) {
    t_jxmlfile *holder = nullptr;
    const std::string before = resources(three);
    const auto sweep_holder = [&](auto operation, auto check) {
        sweep(
            [&] {
                make_with({});
                write_file("test.xml", before);
                fs::remove("new.xml");
                holder = jxmlfile_new(box);
                jxmlfile_filename(holder, gensym("test.xml"));
                jxmlfile_doread(holder);
            },
            [&] { operation(), drain_queue(); },
            [&](bool failed) {
                check(failed);
                jxmlfile_free(holder);
            });
    };
    sweep_holder(
        [&] { jxmlresfile_read(holder, gensym("new.xml")); },
        [&](bool) {
            const std::string now = content("new.xml");
            EXPECT_TRUE(now == "-" || now == "<?xml version=\"1.0\"?>\n<resourcefile><resource/></resourcefile>\n")
                << now;
            EXPECT_EQ(content("test.xml"), before);
            EXPECT_EQ(files(), now == "-" ? Lines{"test.xml"} : (Lines{"new.xml", "test.xml"}));
        });
    sweep_holder(
        [&] {
            holder->file_path = nullptr;
            jxmlresfile_read(holder, gensym("test.xml"));
        },
        [&](bool failed) {
            EXPECT_TRUE(holder->loaded || failed);
            EXPECT_EQ(content("test.xml"), before);
            EXPECT_EQ(files(), Lines{"test.xml"});
        });
    std::string edited = resources(many_texts());
    sweep_holder(
        [&] {
            char *text = edited.data();
            jxmlfile_edsave(holder, &text, static_cast<long>(edited.size()), nullptr, 0);
        },
        [&](bool failed) {
            EXPECT_TRUE(content("test.xml") == edited || (failed && content("test.xml") == before));
            EXPECT_EQ(files(), Lines{"test.xml"});
        });
}

TEST_F(FileFaults, SavingAPatcher) {
    const Lines many = many_texts();
    bool saved = false;
    sweep([&] { make_with(many), write_file("p.maxpat", "before"); },
          [&] { saved = save_patcher(patcher, folder() + "/p.maxpat", reason); },
          [&](bool failed) {
              const std::string now = content("p.maxpat");
              EXPECT_TRUE(saved || (failed && !harmless));
              const bool is_new = now.find("number 199\"") != now.npos; // also when only the folder was not synced
              EXPECT_TRUE(saved || !reason.empty());
              EXPECT_TRUE(is_new || (!saved && now == "before")) << now;
              EXPECT_EQ(files(), Lines{"p.maxpat"});
              EXPECT_EQ(items(), many);
          });
}

TEST_F(FileFaults, OpeningAPatcher) {
    const Lines many = many_texts();
    make_with(many);
    ASSERT_TRUE(save_patcher(patcher, folder() + "/p.maxpat", reason)) << reason;
    free_patcher(patcher);
    const std::string before = content("p.maxpat");
    sweep([&] { patcher = nullptr, reason.clear(); }, [&] { patcher = open_patcher("p.maxpat", reason); },
          [&](bool failed) {
              EXPECT_TRUE(patcher || (failed && !harmless && !reason.empty()));
              EXPECT_EQ(content("p.maxpat"), before);
              box = patcher ? boxes_in(patcher).front() : nullptr;
              EXPECT_TRUE(!box || items() == many);
              if (!patcher)
                  patcher = new_patcher();
          });
}

} // namespace
