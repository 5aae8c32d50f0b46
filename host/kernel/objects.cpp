// Living objects: the register, allocation and release, untyped calls.
#include "kernel/objects.h"

#include <cstdlib>
#include <mutex>
#include <unordered_map>

#include "ext_proto.h"
#include "kernel/classes.h"
#include "kernel/dictionary.h"
#include "kernel/memory.h"
#include "kernel/outlets.h"
#include "kernel/queue.h"

namespace maxhost {
namespace {

struct Register {
    std::mutex mutex;
    std::unordered_map<const void *, std::unique_ptr<Record>> records;
    size_t counted = 0;
    long newest_serial = 0;
};

Register &all_objects() {
    static auto &the_register = *new Register;
    return the_register;
}

} // namespace

Record::Record() = default;
Record::~Record() = default;

Record *record_of(const void *object) {
    Register &objects = all_objects();
    std::lock_guard lock(objects.mutex);
    auto found = objects.records.find(object);
    return found == objects.records.end() ? nullptr : found->second.get();
}

void adopt(t_object *object, Class *cls, void (*release)(void *)) {
    object->o_messlist = reinterpret_cast<messlist *>(cls);
    object->o_magic = OB_MAGIC;
    auto record = std::make_unique<Record>();
    record->cls = cls;
    record->release = release;
    Register &objects = all_objects();
    std::lock_guard lock(objects.mutex);
    record->serial = ++objects.newest_serial;
    objects.records.insert_or_assign(object, std::move(record));
    objects.counted += cls->counted;
}

void release(t_object *object) {
    forget_deferred(object);
    cut_cords(object);
    std::unique_ptr<Record> record;
    {
        Register &objects = all_objects();
        std::lock_guard lock(objects.mutex);
        auto found = objects.records.find(object);
        record = std::move(found->second);
        objects.records.erase(found);
        objects.counted -= record->cls->counted;
    }
    object->o_magic = 0;
    record->release(object);
}

std::string display_name(const t_object *object) {
    const Record *record = object ? record_of(object) : nullptr;
    if (!record)
        return "-";
    return (record->name ? record->name : record->cls->name)->s_name;
}

size_t objects_alive() {
    std::lock_guard lock(all_objects().mutex);
    return all_objects().counted;
}

Record *expect_object(const void *object, const char *function) {
    Record *record = object ? record_of(object) : nullptr;
    if (!record)
        misuse(function, "not a living object");
    return record;
}

} // namespace maxhost

using namespace maxhost;

void *object_alloc(t_class *c) {
    auto *cls = static_cast<Class *>(c);
    if (!at_door(cls && cls->size >= sizeof(t_object), "object_alloc", "not a class of objects") || allocation_fails())
        return nullptr;
    auto *object = static_cast<t_object *>(std::calloc(1, cls->size));
    if (!object)
        return nullptr;
    try {
        adopt(object, cls, std::free);
    } catch (const std::bad_alloc &) {
        std::free(object);
        return nullptr;
    }
    return object;
}

t_max_err object_free(void *x) {
    if (!x)
        return MAX_ERR_NONE;
    const Record *record = expect_object(x, "object_free");
    if (!record)
        return MAX_ERR_INVALID_PTR;
    if (record->cls->destroy)
        record->cls->destroy(x);
    release(static_cast<t_object *>(x));
    return MAX_ERR_NONE;
}

void freeobject(t_object *op) {
    if (at_door(op, "freeobject", "null object"))
        object_free(op);
}

void *object_new_imp(void *p1, void *p2, void *p3, void *p4, void *p5, void *p6, void *p7, void *p8, void *p9,
                     void *p10) {
    const Class *cls = find_class(static_cast<t_symbol *>(p1), static_cast<t_symbol *>(p2));
    if (!cls || !cls->construct)
        return nullptr;
    using Constructor = void *(*)(void *, void *, void *, void *, void *, void *, void *, void *);
    return guarded("object_new", static_cast<void *>(nullptr),
                   [&] { return reinterpret_cast<Constructor>(cls->construct)(p3, p4, p5, p6, p7, p8, p9, p10); });
}

void *object_method_imp(void *x, void *sym, void *p1, void *p2, void *p3, void *p4, void *p5, void *p6, void *p7,
                        void *p8) {
    const Record *record = expect_object(x, "object_method");
    const Method *found = record ? find_method(*record->cls, static_cast<t_symbol *>(sym)) : nullptr;
    if (!found)
        return nullptr;
    using Untyped = void *(*)(void *, void *, void *, void *, void *, void *, void *, void *, void *);
    return guarded("object_method", static_cast<void *>(nullptr),
                   [&] { return reinterpret_cast<Untyped>(found->function)(x, p1, p2, p3, p4, p5, p6, p7, p8); });
}

t_dictionary *object_dictionaryarg(long ac, t_atom *av) {
    for (long i = 0; i < ac; ++i)
        if (auto *dictionary = as<t_dictionary>(atom_getobj(av + i)))
            return dictionary;
    return nullptr;
}
