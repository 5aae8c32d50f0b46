// Attributes: built-in accessors, defaults, saving, and the notification of a change.
#include "kernel/attributes.h"

#include <algorithm>
#include <cstring>

#include "ext_obex_util.h"
#include "ext_proto.h"
#include "ext_sysmem.h"
#include "kernel/atomtext.h"
#include "kernel/critical.h"
#include "kernel/dictionary.h"
#include "kernel/objects.h"
#include "kernel/queue.h"
#include "kernel/scheduler.h"

namespace maxhost {
namespace {

using Getter = t_max_err (*)(void *, void *, long *, t_atom **);
using Setter = t_max_err (*)(void *, void *, long, t_atom *);

// ---- values that live in the instance

// Reads and writes one element of a type; the types that attributes can have.
struct ElementType {
    const char *name;
    size_t size;
    void (*read)(const char *place, t_atom *atom);
    void (*write)(char *place, const t_atom *atom);
};

template <typename Value> Value load(const char *place) {
    Value value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

template <typename Value> void store(char *place, Value value) { std::memcpy(place, &value, sizeof value); }

const ElementType element_types[] = {
    {"long", sizeof(long), [](const char *place, t_atom *atom) { atom_setlong(atom, load<long>(place)); },
     [](char *place, const t_atom *atom) { store<long>(place, atom_getlong(atom)); }},
    {"char", 1, [](const char *place, t_atom *atom) { atom_setlong(atom, load<signed char>(place)); },
     [](char *place, const t_atom *atom) { store(place, static_cast<signed char>(atom_getlong(atom))); }},
    {"float64", sizeof(double), [](const char *place, t_atom *atom) { atom_setfloat(atom, load<double>(place)); },
     [](char *place, const t_atom *atom) { store<double>(place, atom_getfloat(atom)); }},
    {"symbol", sizeof(t_symbol *), [](const char *place, t_atom *atom) { atom_setsym(atom, load<t_symbol *>(place)); },
     [](char *place, const t_atom *atom) { store(place, atom_getsym(atom)); }},
};

const ElementType *element_type(const t_symbol *name) {
    for (const ElementType &type : element_types)
        if (name && std::strcmp(type.name, name->s_name) == 0)
            return &type;
    return nullptr;
}

char *place_of(t_object *object, const Attribute &attribute) {
    return reinterpret_cast<char *>(object) + attribute.offset;
}

void read_elements(t_object *object, const Attribute &attribute, std::vector<t_atom> &values) {
    const ElementType &type = *element_type(attribute.type);
    const char *place = place_of(object, attribute);
    const HeldRegion region; // messages set attributes on both threads
    for (long i = 0; i < attribute.count; ++i, place += type.size)
        type.read(place, &values.emplace_back());
}

t_max_err write_elements(t_object *object, const Attribute &attribute, std::span<const t_atom> values) {
    const ElementType &type = *element_type(attribute.type);
    char *place = place_of(object, attribute);
    const HeldRegion region;
    for (const t_atom &value : values.first(std::min(values.size(), static_cast<size_t>(attribute.count)))) {
        type.write(place, &value);
        place += type.size;
    }
    return values.empty() ? MAX_ERR_GENERIC : MAX_ERR_NONE;
}

// ---- what an attribute object answers

void attribute_setmethod(Attribute *attribute, t_symbol *which, method accessor) {
    (which == gensym("get") ? attribute->getter : attribute->setter) = accessor;
}
t_symbol *attribute_gettype(Attribute *attribute) { return attribute->type; }
t_symbol *attribute_getname(Attribute *attribute) { return attribute->name; }

constexpr const char *flags_not_had = "flags that this host does not have";

Attribute *new_attribute(const char *function, const char *name, const t_symbol *type, long count, long flags,
                         method get, method set, long offset) {
    if (!at_door(flags == ATTR_FLAGS_NONE, function, flags_not_had) ||
        !at_door(name && element_type(type) && count > 0, function, "no name, or a type that this host does not have"))
        return nullptr;
    auto *attribute = guarded(function, static_cast<Attribute *>(nullptr), create<Attribute>);
    if (!attribute)
        return nullptr;
    attribute->name = gensym(name);
    attribute->type = const_cast<t_symbol *>(type);
    attribute->count = count;
    attribute->offset = offset;
    attribute->getter = get;
    attribute->setter = set;
    return attribute;
}

// ---- notifications

void notify(t_object *object, Attribute *attribute) {
    object_method(object, gensym("notify"), record_of(object)->name, gensym("attr_modified"), object, attribute);
}

void *notify_from_queue(t_object *object, t_symbol *, short, t_atom *attribute) {
    notify(object, static_cast<Attribute *>(atom_getobj(attribute)));
    return nullptr;
}

t_max_err set_by_name(void *x, t_symbol *name, t_atom value, const char *function) {
    const Record *record = expect_object(x, function);
    Attribute *attribute = record ? find_attribute(*record->cls, name) : nullptr;
    if (!attribute)
        return MAX_ERR_GENERIC;
    return guarded(function, t_max_err{MAX_ERR_OUT_OF_MEM}, [&] {
        return set_attribute(static_cast<t_object *>(x), *attribute, {&value, 1});
    });
}

} // namespace

Class *Attribute::host_class() {
    static Class *const cls = [] {
        Class *made = new_host_class("attr_offset", false);
        made->methods = {{gensym("setmethod"), reinterpret_cast<method>(attribute_setmethod), {A_CANT}},
                         {gensym("gettype"), reinterpret_cast<method>(attribute_gettype), {A_CANT}},
                         {gensym("getname"), reinterpret_cast<method>(attribute_getname), {A_CANT}}};
        return made;
    }();
    return cls;
}

Attribute *find_attribute(const Class &cls, t_symbol *name) {
    auto found = std::find_if(cls.attributes.begin(), cls.attributes.end(), [&](auto *a) { return a->name == name; });
    return found == cls.attributes.end() ? nullptr : *found;
}

std::span<const t_atom> subattribute(const Attribute &attribute, const char *name) {
    for (auto &[key, atoms] : attribute.attributes)
        if (key == gensym(name))
            return atoms;
    return {};
}

t_max_err get_attribute(t_object *object, Attribute &attribute, std::vector<t_atom> &values) {
    values.clear();
    if (!attribute.getter) {
        read_elements(object, attribute, values);
        return MAX_ERR_NONE;
    }
    long count = 0;
    t_atom *atoms = nullptr;
    const t_max_err result = reinterpret_cast<Getter>(attribute.getter)(object, &attribute, &count, &atoms);
    const std::unique_ptr<t_atom, decltype(&sysmem_freeptr)> owned(atoms, sysmem_freeptr);
    if (result == MAX_ERR_NONE && atoms)
        values.assign(atoms, atoms + count);
    return result;
}

t_max_err set_attribute(t_object *object, Attribute &attribute, std::span<const t_atom> values) {
    std::vector<t_atom> atoms(values.begin(), values.end());
    const t_max_err result = attribute.setter ? reinterpret_cast<Setter>(attribute.setter)(
                                                    object, &attribute, static_cast<long>(atoms.size()), atoms.data())
                                              : write_elements(object, attribute, atoms);
    // Also when the setter refused: a value of several parts may have been taken over in part.
    const Record *record = record_of(object);
    if (!record || !record->ready)
        return result;
    if (!on_scheduler_thread()) {
        notify(object, &attribute);
        return result;
    }
    t_atom changed;
    atom_setobj(&changed, &attribute);
    defer(object, reinterpret_cast<method>(notify_from_queue), attribute.name, {&changed, 1});
    return result;
}

void add_defaults(const Class &cls, t_dictionary *dictionary) {
    for (const Attribute *attribute : cls.attributes) {
        std::span<const t_atom> value = subattribute(*attribute, "default");
        if (!value.empty() && !dictionary->index.contains(attribute->name))
            dictionary_appendatoms(dictionary, attribute->name, static_cast<long>(value.size()),
                                   const_cast<t_atom *>(value.data()));
    }
}

void save_attributes(t_object *object, const Class &cls, t_dictionary *dictionary) {
    std::vector<t_atom> values;
    for (Attribute *attribute : cls.attributes) {
        std::span<const t_atom> save = subattribute(*attribute, "save");
        if (!save.empty() && atom_getlong(save.data()) != 0 &&
            get_attribute(object, *attribute, values) == MAX_ERR_NONE)
            dictionary_appendatoms(dictionary, attribute->name, static_cast<long>(values.size()), values.data());
    }
}

} // namespace maxhost

using namespace maxhost;

t_object *attr_offset_new(const char *name, const t_symbol *type, long flags, const method mget, const method mset,
                          long offset) {
    return new_attribute("attr_offset_new", name, type, 1, flags, mget, mset, offset);
}

t_object *attr_offset_array_new(const char *name, t_symbol *type, long size, long flags, const method mget,
                                const method mset, long offsetcount, long offset) {
    if (!at_door(offsetcount == 0, "attr_offset_array_new", "an array whose length varies"))
        return nullptr;
    return new_attribute("attr_offset_array_new", name, type, size, flags, mget, mset, offset);
}

t_max_err class_addattr(t_class *c, t_object *attr) {
    auto *cls = static_cast<Class *>(c);
    auto *attribute = expect<Attribute>(attr, "class_addattr");
    if (!attribute || !at_door(cls, "class_addattr", "no class"))
        return MAX_ERR_INVALID_PTR;
    if (find_attribute(*cls, attribute->name))
        return MAX_ERR_DUPLICATE;
    return guarded("class_addattr", t_max_err{MAX_ERR_OUT_OF_MEM}, [&] {
        cls->attributes.push_back(attribute);
        return t_max_err{MAX_ERR_NONE};
    });
}

void *class_attr_get(t_class *x, t_symbol *attrname) {
    return at_door(x, "class_attr_get", "no class") ? find_attribute(*static_cast<Class *>(x), attrname) : nullptr;
}

t_max_err class_attr_addattr_parse(t_class *c, const char *attrname, const char *attrname2, t_symbol *type, long flags,
                                   const char *parsestr) {
    if (!at_door(flags == ATTR_FLAGS_NONE, "class_attr_addattr_parse", flags_not_had))
        return MAX_ERR_GENERIC;
    auto *attribute = static_cast<Attribute *>(class_attr_get(c, gensym(attrname)));
    if (!attribute)
        return MAX_ERR_GENERIC;
    return guarded("class_attr_addattr_parse", t_max_err{MAX_ERR_OUT_OF_MEM}, [&] {
        std::vector<t_atom> atoms = parse_atoms(parsestr);
        if (type == gensym("symbol"))
            for (t_atom &atom : atoms)
                if (atom_gettype(&atom) != A_SYM)
                    atom_setsym(&atom, gensym(print_atom(atom).c_str()));
        attribute->attributes.emplace_back(gensym(attrname2), std::move(atoms));
        return t_max_err{MAX_ERR_NONE};
    });
}

t_max_err object_attr_setchar(void *x, t_symbol *s, char c) {
    t_atom value;
    atom_setlong(&value, c);
    return set_by_name(x, s, value, "object_attr_setchar");
}

t_max_err object_attr_setsym(void *x, t_symbol *s, t_symbol *c) {
    t_atom value;
    atom_setsym(&value, c);
    return set_by_name(x, s, value, "object_attr_setsym");
}

void attr_dictionary_process(void *x, t_dictionary *d) {
    const Record *record = expect_object(x, "attr_dictionary_process");
    auto *dictionary = expect<t_dictionary>(d, "attr_dictionary_process");
    if (!record || !dictionary)
        return;
    for (auto &entry : dictionary->entries)
        if (Attribute *attribute = find_attribute(*record->cls, entry.first))
            guarded("attr_dictionary_process",
                    [&] { set_attribute(static_cast<t_object *>(x), *attribute, entry.second); });
}
