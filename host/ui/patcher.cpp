// Patchers.
#include "ui/patcher.h"

#include <algorithm>
#include <string>

#include "ext_proto.h"
#include "kernel/attributes.h"
#include "kernel/dictionary.h"
#include "kernel/objects.h"
#include "kernel/trace.h"

namespace maxhost {
namespace {

// Binds a symbol to an object while it lives.
class Binding {
  public:
    Binding(t_symbol *symbol, t_object *object) : symbol_(symbol), before_(symbol->s_thing) {
        symbol->s_thing = object;
    }
    ~Binding() { symbol_->s_thing = before_; }
    Binding(const Binding &) = delete;
    Binding &operator=(const Binding &) = delete;

  private:
    t_symbol *symbol_;
    t_object *before_;
};

void set_symbol(t_dictionary *dictionary, const char *key, t_symbol *value) {
    t_atom atom;
    atom_setsym(&atom, value);
    dictionary_appendatoms(dictionary, gensym(key), 1, &atom);
}

// A new id that no box of the patcher has.
t_symbol *new_id(Patcher &patcher) {
    t_symbol *id;
    do
        id = gensym(("obj-" + std::to_string(++patcher.newest_id)).c_str());
    while (find_box(patcher, id));
    return id;
}

} // namespace

Class *Patcher::host_class() {
    static Class *const cls = new_host_class("patcher", false);
    return cls;
}

Class *PatcherView::host_class() {
    static Class *const cls = new_host_class("patcherview", false);
    return cls;
}

t_object *make_box(Patcher &patcher, t_symbol *class_name, t_dictionary *dictionary) {
    Class *cls = find_class(CLASS_BOX, class_name);
    if (!cls || !cls->construct)
        return nullptr;
    if (!dictionary->index.contains(gensym("id")))
        set_symbol(dictionary, "id", new_id(patcher));
    add_defaults(*cls, dictionary);
    const Binding patcher_being_filled(gensym("#P"), &patcher);
    t_atom argument;
    atom_setobj(&argument, dictionary);
    using Constructor = t_object *(*)(t_symbol *, long, t_atom *);
    t_object *box = reinterpret_cast<Constructor>(cls->construct)(class_name, 1, &argument);
    if (box)
        for (PatcherView *view : patcher.views)
            object_method(box, gensym("newpatcherview"), view);
    return box;
}

t_object *find_box(const Patcher &patcher, t_symbol *name) {
    for (t_jbox *box : patcher.boxes)
        if (box->b_name == name)
            return &box->b_ob;
    for (t_jbox *box : patcher.boxes)
        if (!box->b_name && box->b_id == name)
            return &box->b_ob;
    return nullptr;
}

PatcherView *open_view(Patcher &patcher) {
    auto *view = create<PatcherView>();
    view->patcher = &patcher;
    patcher.views.push_back(view);
    for (t_jbox *box : patcher.boxes)
        object_method(box, gensym("newpatcherview"), view);
    return view;
}

void close_view(PatcherView *view) {
    for (t_jbox *box : view->patcher->boxes)
        object_method(box, gensym("freepatcherview"), view);
    std::erase(view->patcher->views, view);
    object_free(view);
}

void close_patcher(Patcher *patcher) {
    while (!patcher->views.empty())
        close_view(patcher->views.back());
    while (!patcher->boxes.empty())
        object_free(patcher->boxes.back());
    object_free(patcher);
}

} // namespace maxhost

using namespace maxhost;

t_max_err jpatcher_set_dirty(t_object *p, char c) {
    trace(trace_dirty, "jpatcher_set_dirty", static_cast<int>(c));
    auto *patcher = expect<Patcher>(p, "jpatcher_set_dirty");
    if (!patcher)
        return MAX_ERR_INVALID_PTR;
    patcher->dirty = c != 0;
    return MAX_ERR_NONE;
}

t_object *patcherview_get_jgraphics(t_object *pv) {
    auto *view = expect<PatcherView>(pv, "patcherview_get_jgraphics");
    return view ? reinterpret_cast<t_object *>(view->context) : nullptr;
}
