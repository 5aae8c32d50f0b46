// Living objects: the register that every object pointer is looked up in before it is touched.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ext_obex.h"
#include "kernel/door.h"

namespace maxhost {

struct Class;
struct Outlet;

// What the host knows of a living object, beside the object's own memory.
struct Record {
    Class *cls = nullptr;
    void (*release)(void *) = nullptr; // gives the memory back
    long serial = 0;                   // unlike an address never given again; 0 for what is not in the register
    t_symbol *name = nullptr;          // a box's scripting name or id
    std::vector<std::unique_ptr<Outlet>> outlets; // in order of creation, so from right to left
    std::vector<Outlet *> sources;                // where cords to it begin, once for each cord
    long inlets = 1;
    std::atomic<bool> ready{false};    // construction is over: notifications reach it
    std::optional<t_atom_long> preset; // what "int" brings it back to where it is

    Record();
    ~Record();
};

// The record of a living object; null for any other pointer. It stays where it is until the object is freed.
Record *record_of(const void *object);

// Enters an object into the register and sets its header. When memory runs out (std::bad_alloc) it is not in.
void adopt(t_object *object, Class *cls, void (*release)(void *));

// Takes an object out of the register, and what is queued for it out of the queue, and releases its memory.
void release(t_object *object);

// Scripting name, else class name, else "-".
std::string display_name(const t_object *object);

// How many objects are alive that plug-ins made or asked for.
size_t objects_alive();

// The host's own kinds of object: records that begin with a t_object and name their class by a static host_class().
template <typename Kind> Kind *create() {
    auto object = std::make_unique<Kind>();
    adopt(reinterpret_cast<t_object *>(object.get()), Kind::host_class(),
          [](void *memory) { delete static_cast<Kind *>(memory); });
    return object.release();
}

// `object` as a living object of this kind, or null.
template <typename Kind> Kind *as(const void *object) {
    const Record *record = object ? record_of(object) : nullptr;
    return record && record->cls == Kind::host_class() ? static_cast<Kind *>(const_cast<void *>(object)) : nullptr;
}

// The same at the door: anything else is misuse of `function`.
template <typename Kind> Kind *expect(const void *object, const char *function) {
    Kind *kind = as<Kind>(object);
    if (!kind)
        misuse(function, std::string("not a living ") + Kind::kind_name);
    return kind;
}

// The record of a living object at the door.
Record *expect_object(const void *object, const char *function);

} // namespace maxhost
