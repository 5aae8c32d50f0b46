// Attributes: values with accessors, defaults and attributes of their own.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "ext_obex.h"
#include "kernel/classes.h"

namespace maxhost {

struct Attribute : t_object {
    t_symbol *name = nullptr;
    t_symbol *type = nullptr;
    long count = 1; // elements
    long offset = 0;
    method getter = nullptr; // null: built in
    method setter = nullptr;
    std::vector<std::pair<t_symbol *, std::vector<t_atom>>> attributes; // "save", "default", …

    static Class *host_class();
    static constexpr const char *kind_name = "attribute";
};

Attribute *find_attribute(const Class &cls, t_symbol *name);

// The value of an attribute's attribute; empty when it has none of that name.
std::span<const t_atom> subattribute(const Attribute &attribute, const char *name);

// Runs the getter; `values` is filled on the result 0.
t_max_err get_attribute(t_object *object, Attribute &attribute, std::vector<t_atom> &values);

// Runs the setter and, once the object is ready, its "notify" with "attr_modified": at once on the main thread, through
// the queue on the scheduler thread.
t_max_err set_attribute(t_object *object, Attribute &attribute, std::span<const t_atom> values);

// Puts the declared default of every attribute that the dictionary has no key for into it.
void add_defaults(const Class &cls, t_dictionary *dictionary);

// Appends every attribute that is to be saved.
void save_attributes(t_object *object, const Class &cls, t_dictionary *dictionary);

} // namespace maxhost
