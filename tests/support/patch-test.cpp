// A test with a patcher that is open.
#include "support/patch-test.h"

#include <algorithm>

#include "ext.h"

using namespace maxhost;

void PatchTest::SetUp() {
    HostTest::SetUp();
    patcher = new_patcher();
}

void PatchTest::TearDown() {
    free_patcher(patcher);
    HostTest::TearDown();
}

void PatchTest::open(const std::string &text) {
    std::string reason;
    t_object *opened = open_patcher(write_file("test.maxpat", text), reason);
    ASSERT_NE(opened, nullptr) << reason;
    free_patcher(patcher);
    patcher = opened;
    drain_queue();
}

std::string PatchTest::refusal(const std::string &text) {
    std::string reason = "opened";
    if (t_object *opened = open_patcher(write_file("test.maxpat", text), reason))
        free_patcher(opened);
    return reason;
}

std::string PatchTest::saved_text() {
    std::string reason;
    const std::string path = folder() + "/saved.maxpat";
    EXPECT_TRUE(save_patcher(patcher, path, reason)) << reason;
    return read_file(path);
}

PatchTest::Json PatchTest::saved_member(const std::string &id, const std::string &key) {
    const Json file = saved();
    for (const Json &each : file["patcher"]["boxes"])
        if (each["box"].value("id", "") == id)
            return each["box"].contains(key) ? each["box"][key] : Json("no such key");
    return "no such box";
}

t_object *PatchTest::box(const std::string &name, const std::string &typed) {
    const std::vector<t_atom> words = parse_atoms(typed);
    const auto is_attribute = [](const t_atom &atom) { return atom_getsym(&atom)->s_name[0] == '@'; };
    const OwnedDictionary dictionary = empty_dictionary();
    std::vector<t_atom> varname = parse_atoms(name);
    dictionary_appendatoms(dictionary.get(), gensym("varname"), 1, varname.data());
    const auto end = std::find_if(words.begin() + 1, words.end(), is_attribute);
    for (auto at = end; at != words.end();) {
        const auto next = std::find_if(at + 1, words.end(), is_attribute);
        std::vector<t_atom> values(at + 1, next);
        dictionary_appendatoms(dictionary.get(), gensym(atom_getsym(&*at)->s_name + 1),
                               static_cast<long>(values.size()), values.data());
        at = next;
    }
    t_object *made = new_box(patcher, atom_getsym(&words[0]), dictionary.get(), {words.begin() + 1, end});
    EXPECT_NE(made, nullptr) << typed;
    return made;
}

void PatchTest::cord(const std::string &from, long outlet, const std::string &to, long inlet) {
    EXPECT_TRUE(connect_boxes(named(from), outlet, named(to), inlet)) << from << " to " << to;
}

t_object *PatchTest::named(const std::string &name) {
    t_object *found = box_named(patcher, gensym(name.c_str()));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

Lines PatchTest::sent(const std::string &name, const std::string &messages) {
    take_lines();
    for (const TypedMessage &message : parse_messages(messages))
        send_message(named(name), message.atoms);
    drain_queue();
    return take_lines();
}

std::string file_of(const std::string &boxes, const std::string &lines) {
    return R"({"patcher": {"fileversion": 1, "rect": [0.0, 0.0, 100.0, 100.0], "boxes": [)" + boxes +
           R"(], "lines": [)" + lines + "]}}";
}
