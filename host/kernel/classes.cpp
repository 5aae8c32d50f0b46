// Classes: making, publishing and finding them; typed delivery of messages.
#include "kernel/classes.h"

#include <algorithm>
#include <cstdarg>
#include <map>
#include <mutex>

#include "ext_proto.h"
#include "kernel/attributes.h"
#include "kernel/console.h"
#include "kernel/door.h"
#include "kernel/frontend.h"
#include "kernel/objects.h"

namespace maxhost {
namespace {

struct ClassTable {
    std::mutex mutex;
    std::map<std::pair<t_symbol *, t_symbol *>, Class *> classes; // by name space and name
    Class *newest = nullptr;
};

ClassTable &class_table() {
    static auto &the_table = *new ClassTable;
    return the_table;
}

t_max_err publish(t_symbol *name_space, t_symbol *name, Class *cls) {
    ClassTable &table = class_table();
    std::lock_guard lock(table.mutex);
    if (!table.classes.emplace(std::pair(name_space, name), cls).second)
        return MAX_ERR_DUPLICATE;
    table.newest = cls;
    return MAX_ERR_NONE;
}

// The arguments as the words that a method of these codes takes; false when one is missing or of the wrong kind.
bool convert(std::span<const t_atom> arguments, const std::vector<short> &codes, t_ptr_int *words) {
    if (arguments.size() < codes.size())
        return false;
    for (size_t i = 0; i < codes.size(); ++i) {
        const t_atom *atom = &arguments[i];
        const bool is_symbol = atom_gettype(atom) == A_SYM;
        const bool is_number = atom_gettype(atom) == A_LONG || atom_gettype(atom) == A_FLOAT;
        if (codes[i] == A_SYM ? !is_symbol : !is_number)
            return false;
        words[i] = is_symbol ? reinterpret_cast<t_ptr_int>(atom_getsym(atom)) : atom_getlong(atom);
    }
    return true;
}

bool takes_any_atoms(const Method &method) { return !method.codes.empty() && method.codes[0] == A_GIMME; }

// False when the arguments do not fit the method.
bool call_method(t_object *object, const Method &found, t_symbol *selector, std::span<const t_atom> arguments) {
    if (takes_any_atoms(found)) {
        using AnyAtoms = void *(*)(void *, t_symbol *, long, t_atom *);
        std::vector<t_atom> atoms(arguments.begin(), arguments.end());
        reinterpret_cast<AnyAtoms>(found.function)(object, selector, static_cast<long>(atoms.size()), atoms.data());
        return true;
    }
    t_ptr_int w[MSG_MAXARG] = {};
    if (!convert(arguments, found.codes, w))
        return false;
    using Typed = void *(*)(void *, t_ptr_int, t_ptr_int, t_ptr_int, t_ptr_int, t_ptr_int, t_ptr_int, t_ptr_int);
    reinterpret_cast<Typed>(found.function)(object, w[0], w[1], w[2], w[3], w[4], w[5], w[6]);
    return true;
}

// A method, unless only the host calls it.
const Method *public_method(const Class &cls, t_symbol *name) {
    const Method *found = find_method(cls, name);
    return found && (found->codes.empty() || found->codes[0] != A_CANT) ? found : nullptr;
}

// The method that a patch can call by this selector. A lone number that is no "float" to the class is its "int".
const Method *message_method(const Class &cls, t_symbol *selector) {
    const Method *found = public_method(cls, selector);
    if (!found && selector == gensym("float"))
        found = public_method(cls, gensym("int"));
    return found ? found : public_method(cls, gensym("anything"));
}

thread_local long inlet_in_use = 0;

// Makes an inlet the current one while it lives.
class InletInUse {
  public:
    explicit InletInUse(long inlet) : before_(inlet_in_use) { inlet_in_use = inlet; }
    ~InletInUse() { inlet_in_use = before_; }
    InletInUse(const InletInUse &) = delete;
    InletInUse &operator=(const InletInUse &) = delete;

  private:
    long before_;
};

// Reads an argument list that ends with 0.
std::vector<short> read_codes(short first, va_list rest) {
    std::vector<short> codes;
    for (int code = first; code != A_NOTHING && codes.size() <= MSG_MAXARG; code = va_arg(rest, int))
        codes.push_back(static_cast<short>(code));
    return codes;
}

bool callable(const std::vector<short> &codes) {
    if (codes.size() == 1 && (codes[0] == A_GIMME || codes[0] == A_CANT))
        return true;
    return codes.size() <= MSG_MAXARG &&
           std::all_of(codes.begin(), codes.end(), [](short code) { return code == A_LONG || code == A_SYM; });
}

} // namespace

const Method *find_method(const Class &cls, t_symbol *name) {
    auto found = std::find_if(cls.methods.begin(), cls.methods.end(), [&](auto &m) { return m.name == name; });
    return found == cls.methods.end() ? nullptr : &*found;
}

Class *new_host_class(const char *name, bool counted) {
    auto cls = std::make_unique<Class>(); // c_flags is zero as well
    cls->name = gensym(name);
    cls->counted = counted;
    cls->name_space = CLASS_NOBOX;
    publish(cls->name_space, cls->name, cls.get());
    return cls.release();
}

Class *find_class(t_symbol *name_space, t_symbol *name) {
    ClassTable &table = class_table();
    std::lock_guard lock(table.mutex);
    auto found = table.classes.find({name_space, name});
    return found == table.classes.end() ? nullptr : found->second;
}

void deliver(t_object *object, t_symbol *selector, std::span<const t_atom> arguments, long inlet) {
    const Record *record = record_of(object);
    if (!record)
        return;
    const InletInUse way_in(inlet);
    if (const Method *found = message_method(*record->cls, selector)) {
        if (!call_method(object, *found, selector, arguments))
            console_error(object, std::string("bad arguments for message \"") + selector->s_name + "\"");
    } else if (Attribute *attribute = find_attribute(*record->cls, selector)) {
        const t_max_err result = set_attribute(object, *attribute, arguments);
        if (result != MAX_ERR_NONE && front_end().refused)
            front_end().refused(display_name(object), selector->s_name, result);
    } else {
        console_error(object, std::string("doesn't understand \"") + selector->s_name + "\"");
    }
}

long current_inlet() { return inlet_in_use; }

} // namespace maxhost

using namespace maxhost;

t_class *class_new(const char *name, const method mnew, const method mfree, long size, const method, short type, ...) {
    va_list rest;
    va_start(rest, type); // NOLINT(clang-diagnostic-varargs): a short in the SDK's prototype
    const bool takes_atoms = type == A_GIMME && va_arg(rest, int) == A_NOTHING;
    va_end(rest);
    if (!at_door(name && size >= static_cast<long>(sizeof(t_object)), "class_new",
                 "no name, or no room for a header") ||
        !at_door(takes_atoms, "class_new", "a constructor takes any atoms (A_GIMME)"))
        return nullptr;
    auto *cls = new (std::nothrow) Class(); // c_flags is zero as well
    if (!cls)
        return nullptr;
    cls->name = gensym(name);
    cls->construct = mnew;
    cls->destroy = mfree;
    cls->size = static_cast<size_t>(size);
    return cls;
}

static t_max_err add_method(Class *cls, const method m, const char *name, std::vector<short> codes) {
    if (!at_door(cls && m && name, "class_addmethod", "no class, function or name") ||
        !at_door(!cls->name_space, "class_addmethod", "the class is registered already") ||
        !at_door(callable(codes), "class_addmethod", "argument codes that this host does not call"))
        return MAX_ERR_GENERIC;
    cls->methods.push_back({gensym(name), m, std::move(codes)});
    return MAX_ERR_NONE;
}

t_max_err class_addmethod(t_class *c, const method m, const char *name, ...) {
    va_list rest;
    va_start(rest, name);
    const auto first = static_cast<short>(va_arg(rest, int));
    const t_max_err result = guarded("class_addmethod", t_max_err{MAX_ERR_OUT_OF_MEM}, [&] {
        return add_method(static_cast<Class *>(c), m, name, read_codes(first, rest));
    });
    va_end(rest);
    return result;
}

t_max_err class_register(t_symbol *name_space, t_class *c) {
    auto *cls = static_cast<Class *>(c);
    if (!at_door(cls && name_space && !cls->name_space, "class_register", "no class, or one that is registered"))
        return MAX_ERR_GENERIC;
    if (!at_door((cls->c_flags & ~CLASS_FLAG_NEWDICTIONARY) == 0, "class_register",
                 "flags that this host does not have"))
        return MAX_ERR_GENERIC;
    const t_max_err result =
        guarded("class_register", t_max_err{MAX_ERR_OUT_OF_MEM}, [&] { return publish(name_space, cls->name, cls); });
    if (result == MAX_ERR_NONE)
        cls->name_space = name_space;
    return result;
}

void alias(char *name) {
    Class *newest = class_table().newest;
    if (at_door(name && newest, "alias", "no name, or no class to name"))
        guarded("alias", [&] { publish(newest->name_space, gensym(name), newest); });
}
