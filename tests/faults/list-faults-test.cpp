// The list box while memory runs out: after each failure its items are as before a message or as after it.
#include "faults/faults-test.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "faults/list-box.h"
#include "vrk.tessaroll.h"

using namespace maxhost;
namespace fs = std::filesystem;

extern "C" void ext_main(void *);
int plugin_main(); // main, under another name beside that of the tests
extern "C" void __gcov_dump() __attribute__((weak));

namespace {

using States = std::vector<Lines>;

const Lines three = {"one", "two", "three"};

class ListFaults : public FaultsTest {
  protected:
    void SetUp() override {
        FaultsTest::SetUp();
        register_list_box();
    }

    void make() {
        patcher = new_patcher();
        box = new_list_box(patcher);
    }
    void make_with(const Lines &texts) {
        make();
        for (const std::string &text : texts)
            send("append " + text);
        send("2");
    }
    void send(const std::string &message) {
        const std::vector<t_atom> atoms = parse_atoms(message);
        send_message(box, atoms);
        drain_queue();
    }

    Lines items() const { return items_of(box); }

    // A message to a list of these texts: it is then in one of these states, in the last one unless something was said.
    void sweep_message(const std::string &message, const States &states, const Lines &texts = three) {
        sweep_operation(
            message, states,
            [this, atoms = parse_atoms(message)] {
                send_message(box, atoms);
                drain_queue();
            },
            texts);
    }

    template <typename Operation>
    void sweep_operation(const std::string &what, const States &states, Operation operation,
                         const Lines &texts = three) {
        sweep(
            what, [&] { make_with(texts); }, operation,
            [&](bool) {
                drain_queue(); // when an exception has left something in the queue
                expect_whole(box);
                const Lines now = items();
                EXPECT_NE(std::find(states.begin(), states.end(), now), states.end()) << testing::PrintToString(now);
                EXPECT_TRUE(now == states.back() || has_error() || told) << testing::PrintToString(now);
                send("append after"); // the list goes on working
                EXPECT_EQ(items().size(), now.size() + 1);
                expect_whole(box);
            },
            [&] { free_patcher(patcher); });
    }

    t_object *patcher = nullptr;
    t_object *box = nullptr;
};

TEST_F(ListFaults, Append) { sweep_message("append four", {three, {"one", "two", "three", "four"}}); }
TEST_F(ListFaults, AppendToNothing) { sweep_message("append four", {{}, {"four"}}, {}); }
TEST_F(ListFaults, Insert) { sweep_message("insert 2 new", {three, {"one", "new", "two", "three"}}); }
TEST_F(ListFaults, Replace) { sweep_message("replace 2 new", {three, {"one", "new", "three"}}); }
TEST_F(ListFaults, Delete) { sweep_message("delete 2", {three, {"one", "three"}}); }
TEST_F(ListFaults, DeleteTheLast) { sweep_message("delete 1", {{"one"}, {}}, {"one"}); }
TEST_F(ListFaults, Clear) { sweep_message("clear", {three, {}}); }
TEST_F(ListFaults, Restoring) {
    sweep_message("restoreitem four", {three, {"one", "two", "three", "four"}});
    sweep_message("restoreitems four five", {three,
                                             {"one", "two", "three", "four"},
                                             {"one", "two", "three", "five"},
                                             {"one", "two", "three", "four", "five"}});
    sweep_message("restore 9 4", {three});
}

TEST_F(ListFaults, NavigationAndOutput) {
    for (const char *message : {"3", "set 3", "next", "previous", "home", "end", "bang", "length", "dump", "erase"})
        sweep_message(message, {three});
    sweep_operation("preset", {three}, [this] { tessaroll_preset(reinterpret_cast<t_tessaroll *>(box)); });
}

TEST_F(ListFaults, ThePresetMechanismGetsTheCurrentRow) {
    make_with(three);
    tessaroll_preset(reinterpret_cast<t_tessaroll *>(box));
    send("3");
    EXPECT_TRUE(recall_preset(box));
    EXPECT_EQ(jlist_currow(reinterpret_cast<t_tessaroll *>(box)->jlist), 2);
    free_patcher(patcher);
}

TEST_F(ListFaults, Attributes) {
    for (const char *message : {"frame 2", "embed 1", "selectcolor 1. 0. 0. 1.", "root other", "xmlpath a b",
                                "fontsize 14.", "fontname Times", "patching_rect 0. 0. 50. 50."})
        sweep_message(message, {three});
    for (const char *name : {"frame", "embed", "selectcolor", "root", "xmlpath", "fontsize", "fontname", "cellh"})
        sweep_operation(std::string("get ") + name, {three}, [this, name] {
            std::vector<t_atom> values;
            read_attribute(box, gensym(name), values);
        });
}

TEST_F(ListFaults, PaintingAndClicking) {
    sweep_operation("paint", {three}, [this] { painted_row(box, 2); });
    sweep_operation("click", {three}, [this] { click_row(box, 3); });
    sweep_operation("key", {three}, [this] { press_key(box, Key::down); });
    sweep_operation("assist", {three}, [this] { assistance(box, false, 1); });
    sweep_operation("window", {three}, [this] {
        t_object *view = open_patcher_view(patcher);
        close_patcher_view(view);
    });
}

TEST_F(ListFaults, MakingAndFreeing) {
    OwnedDictionary saved;
    std::vector<t_atom> items = parse_atoms("one two three");
    t_atom argument;
    t_object *waiting = nullptr; // an older box that has not had its "done"
    sweep(
        "make",
        [&] {
            saved = empty_dictionary();
            dictionary_appendatoms(saved.get(), gensym("restoreitems"), 3, items.data());
            atom_setobj(&argument, saved.get());
            patcher = new_patcher(), box = nullptr;
            waiting = new_list_box(patcher);
        },
        [&] {
            t_object *&filled = gensym("#P")->s_thing; // as when a patcher makes it
            filled = patcher;
            box = static_cast<t_object *>(
                object_new(CLASS_BOX, gensym("vrk.tessaroll"), gensym("vrk.tessaroll"), 1L, &argument));
            filled = nullptr;
            drain_queue();
        },
        [&](bool failed) {
            drain_queue();
            EXPECT_TRUE(box || failed);
            EXPECT_EQ(gensym("#X")->s_thing, box ? nullptr : waiting);
            if (!box)
                return;
            const Lines now = this->items();
            EXPECT_TRUE(now == three || has_error() || told);
            expect_whole(box);
            send("append after");
            EXPECT_EQ(this->items().size(), now.size() + 1);
        },
        [&] { free_patcher(patcher), saved.reset(); });
    sweep(
        "free", [this] { make_with(three); }, [this] { free_box(box); }, [](bool) {},
        [this] { free_patcher(patcher); });
}

TEST_F(ListFaults, Reading) {
    write_file("two.xml", "<?xml version=\"1.0\"?>\n<resourcefile><resource><string number=\"0\">a</string>"
                          "<string number=\"1\"> b &amp; c </string></resource></resourcefile>\n");
    const auto reading = [this](const char *what) {
        sweep_operation(what, {three, {}, {"a", "b & c"}}, [this] {
            send_message(box, parse_atoms("xmlpath resource string"));
            send_message(box, parse_atoms("read two.xml"));
            drain_queue();
        });
    };
    reading("read");
}

// Whether a file is the whole one but for a text that has been reported and is written as an empty resource.
bool lacks_a_text(const std::string &file, std::string whole) {
    for (const std::string &text : three) {
        std::string lacking = whole;
        const size_t at = lacking.find(">" + text + "</string>");
        if (lacking.replace(at, text.size() + sizeof("></string>") - 1, "/>") == file)
            return true;
    }
    return false;
}

TEST_F(ListFaults, Writing) {
    const std::string path = folder() + "/out.xml";
    const std::string before = "what was there";
    const std::string whole = "<?xml version=\"1.0\"?>\n<resourcefile><resource><string number=\"0\">one</string>"
                              "<string number=\"1\">two</string><string number=\"2\">three</string></resource>"
                              "</resourcefile>\n";
    sweep(
        "write", [&] { make_with(three), write_file("out.xml", before); }, [this] { send("write out.xml"); },
        [&](bool failed) {
            drain_queue();
            EXPECT_EQ(items(), three);
            const std::string now = read_file(path);
            EXPECT_TRUE(now == before || now == whole || (has_error() && lacks_a_text(now, whole))) << now;
            EXPECT_TRUE(now == whole || failed);
            const auto files = fs::directory_iterator(folder());
            EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "something is left behind";
        },
        [this] { free_patcher(patcher); });
}

// A list of images in the same box; it shares the box's view's font only.
TEST_F(ListFaults, Images) {
    const auto list_releaser = [](t_jlist *list) { jlist_free(list); };
    using OwnedList = std::unique_ptr<t_jlist, decltype(list_releaser)>;
    const std::string image = read_file(TEST_DATA_DIR "/two-by-one.png");
    OwnedList list(nullptr, list_releaser);
    t_jxmlfile *holder = nullptr;
    const auto prepare = [&] {
        make();
        list.reset(jlist_new(box, gensym("pictures"), JLIST_FILE_TYPE));
        for (int i = 0; i < 2; ++i)
            jlist_append(list.get(), gensym("append"),
                         jgraphics_image_surface_create_from_filedata(image.data(), image.size()), 0, nullptr);
        holder = jxmlfile_new(box);
        holder->xmlpath[1] = gensym("image");
        fs::remove("out.xml");
    };
    const auto clean = [&] {
        jxmlfile_free(holder);
        list.reset();
        free_patcher(patcher);
    };
    t_atom name;
    atom_setsym(&name, gensym((folder() + "/out.xml").c_str()));
    const auto write = [&] { jlist_write(list.get(), gensym("write"), 1, &name); };
    prepare();
    write();
    const std::string whole = read_file(folder() + "/out.xml");
    clean();
    write_file("images.xml", whole);
    sweep(
        "write images", prepare, write,
        [&](bool failed) {
            const bool written = fs::exists("out.xml") && read_file(folder() + "/out.xml") == whole;
            EXPECT_TRUE(written || failed);
            EXPECT_TRUE(written || !fs::exists("out.xml") || has_error());
        },
        clean);
    sweep(
        "read images", prepare, [&] { jlist_load_from_xml(list.get(), holder, gensym("images.xml")); },
        [&](bool failed) {
            const long rows = jlist_hasdata(list.get()) ? jlist_numrows(list.get()) : 0;
            EXPECT_TRUE(rows == 2 || rows == 0);
            EXPECT_TRUE(rows == 2 || has_error());
            for (long row = 1; row <= rows; ++row)
                EXPECT_TRUE(jlist_getdata(list.get(), row) || failed);
        },
        clean);
    sweep(
        "append an image", prepare,
        [&] {
            void *made = jgraphics_image_surface_create_from_filedata(image.data(), image.size());
            jlist_append(list.get(), gensym("append"), made, 0, nullptr);
        },
        [&](bool failed) { EXPECT_TRUE(jlist_numrows(list.get()) == 3 || (failed && has_error())); }, clean);
}

// Loading registers a class for the life of a process, so that each run has a process of its own.
using LoadingFaults = FaultsTest;

// Ends a process that was forked, with what it has run through counted, when that is being counted.
[[noreturn]] void leave(int status) {
    if (__gcov_dump)
        __gcov_dump();
    _exit(status);
}

// The status of a process that runs a function.
template <typename Function> int status_of_process(Function function) {
    const pid_t child = fork();
    if (child == 0)
        leave(function());
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST_F(LoadingFaults, Registering) {
    for (const Allocator allocator : all_allocators)
        for (const Shortage shortage : {Shortage::passing, Shortage::lasting}) {
            long n = 0;
            int status;
            do {
                ++n;
                status = status_of_process([=] {
                    FailingAllocation failing(allocator, shortage, n);
                    ext_main(nullptr);
                    return failing.end() ? 1 : 0;
                });
                ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) <= 1)
                    << name_of(allocator) << " " << n << ": status " << status;
            } while (WEXITSTATUS(status) == 1);
            runs[allocator] += n - 1;
        }
}

TEST_F(LoadingFaults, OldHostsCallMain) {
    EXPECT_EQ(status_of_process([] { return plugin_main() == 0 && new_list_box(new_patcher()) ? 0 : 1; }), 0);
}

} // namespace
