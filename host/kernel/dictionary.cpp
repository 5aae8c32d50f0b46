// Dictionaries.
#include "kernel/dictionary.h"

#include "ext_proto.h"
#include "kernel/classes.h"

using namespace maxhost;

// All or nothing, also when memory runs out (std::bad_alloc).
static void put_atoms(t_dictionary &dictionary, t_symbol *key, std::vector<t_atom> atoms) {
    if (auto found = dictionary.index.find(key); found != dictionary.index.end()) {
        dictionary.entries[found->second].second = std::move(atoms);
        return;
    }
    dictionary.entries.emplace_back(key, std::move(atoms));
    try {
        dictionary.index.emplace(key, dictionary.entries.size() - 1);
    } catch (const std::bad_alloc &) {
        dictionary.entries.pop_back();
        throw;
    }
}

Class *_dictionary::host_class() {
    static Class *const cls = new_host_class("dictionary", false);
    return cls;
}

OwnedDictionary maxhost::new_dictionary() { return OwnedDictionary(create<t_dictionary>()); }

std::span<const t_atom> maxhost::atoms_under(const t_dictionary *dictionary, const char *key) {
    auto found = dictionary->index.find(gensym(key));
    if (found == dictionary->index.end())
        return {};
    return dictionary->entries[found->second].second;
}

t_max_err dictionary_getatoms(const t_dictionary *d, t_symbol *key, long *argc, t_atom **argv) {
    auto *dictionary = expect<t_dictionary>(d, "dictionary_getatoms");
    if (!dictionary)
        return MAX_ERR_INVALID_PTR;
    auto found = dictionary->index.find(key);
    if (found == dictionary->index.end())
        return MAX_ERR_GENERIC;
    const auto mark = [&] { return dictionary->asked.insert(key), true; };
    if (!guarded("dictionary_getatoms", false, mark))
        return MAX_ERR_OUT_OF_MEM;
    std::vector<t_atom> &atoms = dictionary->entries[found->second].second;
    *argc = static_cast<long>(atoms.size());
    *argv = atoms.data();
    return MAX_ERR_NONE;
}

t_max_err dictionary_appendatoms(t_dictionary *d, t_symbol *key, long argc, t_atom *argv) {
    auto *dictionary = expect<t_dictionary>(d, "dictionary_appendatoms");
    if (!dictionary ||
        !at_door(key && argc >= 0 && (argv || argc == 0), "dictionary_appendatoms", "no key or no atoms"))
        return MAX_ERR_INVALID_PTR;
    return guarded("dictionary_appendatoms", t_max_err{MAX_ERR_OUT_OF_MEM}, [&] {
        put_atoms(*dictionary, key, std::vector<t_atom>(argv, argv + argc));
        return t_max_err{MAX_ERR_NONE};
    });
}
