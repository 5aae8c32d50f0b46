// patcher: a patcher in a box, with the boxes inlet and outlet in it for what comes in and goes out.
#include <algorithm>
#include <string>
#include <vector>

#include "kernel/objects.h"
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"
#include "ui/patcher.h"

namespace maxhost {
namespace {

// A port is an inlet or outlet box inside.
struct PortParts {
    std::string comment;    // its assistance
    void *outlet = nullptr; // of an inlet box; of an outlet box, the one of the box around, null while it has none
};
using Port = HostBox<PortParts>;

struct SubpatcherParts {
    std::vector<Port *> inlets, outlets; // from left to right; the patcher inside lives as long as they do
};
using Subpatcher = HostBox<SubpatcherParts>;

t_class *patcher_class;
t_class *inlet_class;
t_class *outlet_class;

// ---- inlet and outlet

void port_anything(Port *x, t_symbol *selector, long argc, t_atom *argv) {
    if (x->parts->outlet)
        send_through(x->parts->outlet, selector, {argv, static_cast<size_t>(argc)});
}

Port *make_port(t_class *cls, long argc, t_atom *argv) {
    auto *x = begin_box<PortParts>(cls, argc, argv);
    if (!x)
        return nullptr;
    const std::span<const t_atom> comment = atoms_under(object_dictionaryarg(argc, argv), "comment");
    x->parts->comment = comment.empty() ? "" : atom_getsym(comment.data())->s_name;
    return x;
}

void *inlet_new(t_symbol *, long argc, t_atom *argv) {
    Port *x = make_port(inlet_class, argc, argv);
    if (!x)
        return nullptr;
    set_inlet_count(&x->box.b_ob, 0);
    x->parts->outlet = outlet_new(x, nullptr);
    return finish_box(x, argc, argv);
}

void *outlet_box_new(t_symbol *, long argc, t_atom *argv) {
    Port *x = make_port(outlet_class, argc, argv);
    return x ? finish_box(x, argc, argv) : nullptr;
}

// A port that goes is one that the box around has no more.
void port_free(Port *x) {
    const auto *patcher = as<Patcher>(x->box.b_patcher);
    if (patcher && patcher->owner) {
        auto *around = reinterpret_cast<Subpatcher *>(patcher->owner);
        std::replace(around->parts->inlets.begin(), around->parts->inlets.end(), x, static_cast<Port *>(nullptr));
        std::replace(around->parts->outlets.begin(), around->parts->outlets.end(), x, static_cast<Port *>(nullptr));
    }
    free_host_box(x);
}

void inlet_assist(Port *x, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {}, {x->parts->comment.c_str()});
}

void outlet_assist(Port *x, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {x->parts->comment.c_str()}, {});
}

// ---- patcher

void patcher_anything(Subpatcher *x, t_symbol *selector, long argc, t_atom *argv) {
    const auto inlet = static_cast<size_t>(current_inlet());
    if (inlet < x->parts->inlets.size() && x->parts->inlets[inlet])
        deliver(&x->parts->inlets[inlet]->box.b_ob, selector, {argv, static_cast<size_t>(argc)});
}

// The ports of a class in a patcher, from left to right.
std::vector<Port *> ports_of(const Patcher &patcher, const t_class *cls) {
    std::vector<Port *> ports;
    for (t_jbox *box : patcher.boxes)
        if (record_of(box)->cls == cls)
            ports.push_back(reinterpret_cast<Port *>(box));
    std::stable_sort(ports.begin(), ports.end(),
                     [](const Port *a, const Port *b) { return a->box.b_patching_rect.x < b->box.b_patching_rect.x; });
    return ports;
}

// The host has filled the patcher inside.
void patcher_filled(Subpatcher *x) {
    const Patcher &inner = *box_state(x)->inner;
    x->parts->inlets = ports_of(inner, inlet_class);
    x->parts->outlets = ports_of(inner, outlet_class);
    set_inlet_count(&x->box.b_ob, static_cast<long>(x->parts->inlets.size()));
    for (size_t i = x->parts->outlets.size(); i-- > 0;) // outlets come from right to left
        x->parts->outlets[i]->parts->outlet = outlet_new(x, nullptr);
}

void patcher_assist(Subpatcher *x, void *, long kind, long index, char *text) {
    const std::vector<Port *> &ports = kind == 1 ? x->parts->inlets : x->parts->outlets;
    if (index >= 0 && static_cast<size_t>(index) < ports.size() && ports[static_cast<size_t>(index)]) {
        const char *comment = ports[static_cast<size_t>(index)]->parts->comment.c_str();
        assist_with(text, kind, 0, {comment}, {comment});
    }
}

void *patcher_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<SubpatcherParts>(patcher_class, argc, argv);
    if (!x)
        return nullptr;
    auto *inner = create<Patcher>();
    inner->owner = &x->box;
    box_state(x)->inner = inner;
    set_inlet_count(&x->box.b_ob, 0);
    return finish_box(x, argc, argv);
}

void patcher_free(Subpatcher *x) {
    close_patcher(box_state(x)->inner);
    free_host_box(x);
}

t_class *register_port(const char *name, BoxConstructor make) {
    t_class *cls = new_box_class<PortParts>(name, make, BoxKind::shown);
    static_cast<Class *>(cls)->destroy = reinterpret_cast<method>(port_free);
    add_method(cls, port_anything, "anything");
    return cls;
}

} // namespace

void register_subpatcher() {
    inlet_class = register_port("inlet", inlet_new);
    add_private(inlet_class, inlet_assist, "assist");
    class_register(CLASS_BOX, inlet_class);
    outlet_class = register_port("outlet", outlet_box_new);
    add_private(outlet_class, outlet_assist, "assist");
    class_register(CLASS_BOX, outlet_class);

    patcher_class = new_box_class<SubpatcherParts>("patcher", patcher_new, BoxKind::typed);
    static_cast<Class *>(patcher_class)->destroy = reinterpret_cast<method>(patcher_free);
    add_method(patcher_class, patcher_anything, "anything");
    add_private(patcher_class, patcher_filled, "patcherfilled");
    add_private(patcher_class, patcher_assist, "assist");
    class_register(CLASS_BOX, patcher_class);
    alias(const_cast<char *>("p"));
}

} // namespace maxhost
