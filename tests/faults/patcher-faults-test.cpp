// Patchers around a list while memory runs out. What is not promised: the host's JSON library ends the program when
// operator new fails in the destructor of a value that it is still building, so that reading and saving the files of
// patchers is not run with failures of new. Freeing them is.
#include "faults/faults-test.h"

#include <algorithm>
#include <array>

#include "faults/list-box.h"

using namespace maxhost;

namespace {

constexpr std::array but_new = {Allocator::host, Allocator::plugin_malloc, Allocator::libxml2};

const std::string json = R"({"patcher": {"boxes": [{"box": {"id": "obj-1", "maxclass": "vrk.tessaroll", "embed": 1,
    "restoreitems": ["one", "two"], "varname": "list"}}], "lines": []}})";
const std::string old_text = "max v2;\n#N vpatcher 10 10 400 300;\n#P user vrk.tessaroll 10 20 120 90 105 11;\n"
                             "#X restoreitem one;\n#X restoreitem two;\n#X done;\n#P pop;\n";

class PatcherFaults : public FaultsTest {
  protected:
    void SetUp() override {
        FaultsTest::SetUp();
        register_list_box();
    }

    Lines items() const {
        for (t_object *box : boxes_in(patcher))
            if (class_of_box(box) == gensym("vrk.tessaroll"))
                return items_of(box);
        return {};
    }

    void open(const std::string &file) {
        patcher = open_patcher(file, reason);
        drain_queue();
    }

    bool something_said() const { return told || std::any_of(lines.begin(), lines.end(), is_said); }
    static bool is_said(const std::string &line) { return line.starts_with("error: ") || line.starts_with("warn: "); }

    t_object *patcher = nullptr;
    std::string reason;
};

TEST_F(PatcherFaults, Opening) {
    for (const std::string &text : {json, old_text})
        sweep(
            text.substr(0, 7), [&] { write_file("p.maxpat", text), patcher = nullptr; }, [this] { open("p.maxpat"); },
            [this](bool failed) {
                EXPECT_TRUE(patcher || failed);
                EXPECT_TRUE((patcher && items() == Lines{"one", "two"}) || something_said());
                EXPECT_EQ(read_file(folder() + "/p.maxpat").size() > 0, true);
            },
            [this] {
                if (patcher)
                    free_patcher(patcher);
            },
            but_new);
}

TEST_F(PatcherFaults, Saving) {
    const std::string before = "what was there";
    std::string whole;
    sweep(
        "save",
        [&] {
            write_file("p.maxpat", json);
            open("p.maxpat");
            write_file("saved.maxpat", before);
        },
        [this] { save_patcher(patcher, "saved.maxpat", reason); },
        [&](bool failed) {
            const std::string now = read_file(folder() + "/saved.maxpat");
            if (!failed)
                whole = now;
            EXPECT_NE(now, "");
            EXPECT_TRUE(now == before || now.find("\"two\"") != now.npos || something_said()) << now;
            EXPECT_EQ(items(), (Lines{"one", "two"}));
        },
        [this] { free_patcher(patcher); }, but_new);
}

TEST_F(PatcherFaults, Freeing) {
    sweep(
        "free", [this] { write_file("p.maxpat", json), open("p.maxpat"); }, [this] { free_patcher(patcher); },
        [](bool) {}, [] {});
}

} // namespace
