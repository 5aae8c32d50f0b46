// A test with the list box in a patcher.
#include "support/tessaroll-test.h"

#include "kernel/classes.h"

using namespace maxhost;

OwnedDictionary dictionary_of(Entries entries) {
    OwnedDictionary dictionary = empty_dictionary();
    for (const auto &[key, atoms] : entries)
        enter(dictionary.get(), key, parse_atoms(atoms));
    return dictionary;
}

void enter(t_dictionary *dictionary, const char *key, std::vector<t_atom> atoms) {
    dictionary_appendatoms(dictionary, gensym(key), static_cast<long>(atoms.size()), atoms.data());
}

std::string entry(const OwnedDictionary &dictionary, const char *key) {
    long count = 0;
    t_atom *atoms = nullptr;
    if (dictionary_getatoms(dictionary.get(), gensym(key), &count, &atoms) != MAX_ERR_NONE)
        return "-";
    return print_atoms({atoms, static_cast<size_t>(count)});
}

std::string all_entries(const OwnedDictionary &dictionary) {
    std::string text;
    for (const auto &[key, atoms] : dictionary->entries)
        text += std::string(text.empty() ? "" : "; ") + key->s_name + " " + print_atoms(atoms);
    return text;
}

std::vector<t_atom> symbols(const Lines &texts) {
    std::vector<t_atom> atoms(texts.size());
    for (size_t i = 0; i < texts.size(); ++i)
        atom_setsym(&atoms[i], gensym(texts[i].c_str()));
    return atoms;
}

const Class &class_of(const t_object *object) { return *reinterpret_cast<const Class *>(object->o_messlist); }

method method_of(const t_object *object, const char *name) {
    for (const Method &found : class_of(object).methods)
        if (found.name == gensym(name))
            return found.function;
    return nullptr;
}

void TessarollTest::SetUp() {
    HostTest::SetUp();
    std::string reason;
    ASSERT_TRUE(load_plugin(VRK_PLUGIN, reason)) << reason;
    gensym("#X")->s_thing = nullptr;
    patcher = new_patcher();
}

void TessarollTest::TearDown() {
    free_patcher(patcher);
    HostTest::TearDown();
}

t_object *TessarollTest::make(const OwnedDictionary &dictionary) {
    return new_box(patcher, gensym("vrk.tessaroll"), dictionary.get());
}

t_object *TessarollTest::make_with(const Lines &texts) {
    const OwnedDictionary dictionary = dictionary_of({{"embed", "1"}});
    enter(dictionary.get(), "restoreitems", symbols(texts));
    t_object *box = make(dictionary);
    drain_queue();
    return box;
}

void TessarollTest::send(t_object *box, const std::string &message) { send_message(box, parse_atoms(message)); }

void TessarollTest::send(t_object *box, const char *selector, const Lines &texts) {
    std::vector<t_atom> atoms = symbols(texts);
    atoms.insert(atoms.begin(), symbols({selector}).front());
    send_message(box, atoms);
}

void TessarollTest::send_and_drain(t_object *box, const std::string &message) {
    send(box, message);
    drain_queue();
}

Lines TessarollTest::items(t_object *box) {
    EXPECT_EQ(take_lines(), no_lines);
    send(box, "dump");
    Lines all;
    for (const std::string &line : take_lines())
        if (const size_t place = line.find(":2 "); place != line.npos)
            all.push_back(line.substr(place + 3));
    return all;
}

std::string TessarollTest::attribute(t_object *box, const char *name) {
    std::vector<t_atom> values;
    const t_max_err result = read_attribute(box, gensym(name), values);
    return result ? "refused " + std::to_string(result) : print_atoms(values);
}

t_max_err TessarollTest::set(t_object *box, const char *name, const char *value) {
    return write_attribute(box, gensym(name), parse_atoms(value));
}

ViewState TessarollTest::view(t_object *box) {
    ViewState state{};
    EXPECT_TRUE(data_view_state(box, state));
    return state;
}

t_object *TessarollTest::bound() { return gensym("#X")->s_thing; }
