// Classes: methods with their argument codes, and delivery of messages to them.
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "ext_obex.h"

namespace maxhost {

struct Attribute;

struct Method {
    t_symbol *name;
    method function;
    std::vector<short> codes; // without the closing 0
};

struct Class : maxclass {
    t_symbol *name = nullptr;
    t_symbol *name_space = nullptr; // set by class_register
    method construct = nullptr;
    method destroy = nullptr; // may be null
    size_t size = 0;
    bool is_box = false;   // set by jbox_initclass, like
    long box_flags = 0;    // its flags
    bool is_typed = false; // its boxes are made from a text, class and arguments
    bool counted = true;   // its objects count as alive (host memory)
    std::vector<Method> methods;
    std::vector<Attribute *> attributes;
};

const Method *find_method(const Class &cls, t_symbol *name);

// A class for one of the host's own kinds of object, published in the name space "nobox".
Class *new_host_class(const char *name, bool counted);

// A published class, by its name or an alias; null when there is none.
Class *find_class(t_symbol *name_space, t_symbol *name);

// Delivers a message as a patch does, to an inlet counted from the left: by the argument codes of the method, or to the
// attribute of that name, on the calling thread. What the object does not understand, or cannot take, is told on the
// console.
void deliver(t_object *object, t_symbol *selector, std::span<const t_atom> arguments, long inlet = 0);

// Inside the method that a message called, before it sends anything: the inlet that the message came to.
long current_inlet();

} // namespace maxhost
