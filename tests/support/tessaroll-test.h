// A test with the list box, out of its plug-in, in a patcher.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "support/host-test.h"

namespace maxhost {
struct Class;
}

// Dictionaries: keys and their atoms, as they would be typed.
using Entries = std::initializer_list<std::pair<const char *, const char *>>;

maxhost::OwnedDictionary dictionary_of(Entries entries);
void enter(t_dictionary *dictionary, const char *key, std::vector<t_atom> atoms);

// The atoms under a key, as text; "-" when there is no such key.
std::string entry(const maxhost::OwnedDictionary &dictionary, const char *key);

// "KEY ATOMS; KEY ATOMS"
std::string all_entries(const maxhost::OwnedDictionary &dictionary);

std::vector<t_atom> symbols(const Lines &texts);

// The record of an object's class, to which its header leads.
const maxhost::Class &class_of(const t_object *object);

// A method of that class; null when there is none of that name.
method method_of(const t_object *object, const char *name);

// The plug-in is loaded, and nothing is bound to "#X".
class TessarollTest : public HostTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    // The first box of a patcher is "obj-1", the next one "obj-2".
    t_object *make(const maxhost::OwnedDictionary &dictionary);
    t_object *make(Entries entries = {}) { return make(dictionary_of(entries)); }

    // A box with these items, which keeps them in the patcher.
    t_object *make_with(const Lines &texts);

    // A message as it would be typed, or one of texts that cannot be.
    static void send(t_object *box, const std::string &message);
    static void send(t_object *box, const char *selector, const Lines &texts);
    static void send_and_drain(t_object *box, const std::string &message);

    // What "dump" puts out of the right outlet.
    Lines items(t_object *box);

    // The value of an attribute, or "refused RESULT".
    static std::string attribute(t_object *box, const char *name);
    static t_max_err set(t_object *box, const char *name, const char *value);

    static maxhost::ViewState view(t_object *box);

    // What is bound to "#X".
    static t_object *bound();

    t_object *patcher = nullptr;
};
