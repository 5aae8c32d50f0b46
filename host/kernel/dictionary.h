// Dictionaries: keys in order of their coming, each with its atoms.
#pragma once

#include <span>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "ext_dictionary.h"
#include "kernel/objects.h"

namespace maxhost {
using DictionaryEntries = std::vector<std::pair<t_symbol *, std::vector<t_atom>>>;
}

struct _dictionary : t_object {
    maxhost::DictionaryEntries entries;
    std::unordered_map<t_symbol *, size_t> index;
    std::unordered_set<t_symbol *> asked; // keys that a plug-in has read by their name

    static maxhost::Class *host_class();
    static constexpr const char *kind_name = "dictionary";
};

namespace maxhost {

struct DictionaryReleaser {
    void operator()(t_dictionary *dictionary) const { object_free(dictionary); }
};
using OwnedDictionary = std::unique_ptr<t_dictionary, DictionaryReleaser>;

OwnedDictionary new_dictionary();

// The atoms under a key, or none. Unlike dictionary_getatoms this leaves no mark in `asked`.
std::span<const t_atom> atoms_under(const t_dictionary *dictionary, const char *key);

} // namespace maxhost
