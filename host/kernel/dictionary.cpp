// Dictionaries.
#include "kernel/dictionary.h"

#include "ext_proto.h"
#include "kernel/classes.h"

using namespace maxhost;

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
    dictionary->asked.insert(key);
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
    auto [place, is_new] = dictionary->index.emplace(key, dictionary->entries.size());
    if (is_new)
        dictionary->entries.emplace_back(key, std::vector<t_atom>());
    dictionary->entries[place->second].second.assign(argv, argv + argc);
    return MAX_ERR_NONE;
}
