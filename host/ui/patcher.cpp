// Patchers.
#include "ui/patcher.h"

#include <algorithm>
#include <string>
#include <utility>

#include "ext_proto.h"
#include "kernel/attributes.h"
#include "kernel/dictionary.h"
#include "kernel/frontend.h"
#include "kernel/objects.h"
#include "kernel/outlets.h"
#include "kernel/trace.h"
#include "ui/box.h"

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

// Keeps the dictionary of the box that is being made in a patcher.
class BoxBeingMade {
  public:
    BoxBeingMade(Patcher &patcher, const t_dictionary *dictionary)
        : patcher_(patcher), before_(std::exchange(patcher.box_dictionary, dictionary)) {}
    ~BoxBeingMade() { patcher_.box_dictionary = before_; }
    BoxBeingMade(const BoxBeingMade &) = delete;
    BoxBeingMade &operator=(const BoxBeingMade &) = delete;

  private:
    Patcher &patcher_;
    const t_dictionary *before_;
};

void forget_name(BoxesByName &boxes, t_symbol *name, const t_jbox *box) {
    auto found = boxes.find(name);
    if (found == boxes.end())
        return;
    std::erase(found->second, box);
    if (found->second.empty())
        boxes.erase(found);
}

t_object *first_of(const BoxesByName &boxes, t_symbol *name) {
    auto found = boxes.find(name);
    return found == boxes.end() ? nullptr : &found->second.front()->b_ob;
}

// An id that no box of the patcher has, nor goes by.
t_symbol *new_id(Patcher &patcher) {
    t_symbol *id;
    do
        id = gensym(("obj-" + std::to_string(++patcher.newest_id)).c_str());
    while (find_box(patcher, id));
    return id;
}

// The box that "a::b" names.
t_object *find_inner_box(const Patcher &patcher, const std::string &path) {
    const size_t colons = path.find("::");
    if (colons == path.npos)
        return nullptr;
    const BoxState *outer = box_state(find_box(patcher, gensym(path.substr(0, colons).c_str())));
    return outer && outer->inner ? find_box(*outer->inner, gensym(path.c_str() + colons + 2)) : nullptr;
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

t_object *make_box(Patcher &patcher, const Class &cls, t_dictionary *dictionary, std::span<const t_atom> arguments) {
    if (!cls.construct)
        return nullptr;
    const bool takes_dictionary = (cls.c_flags & CLASS_FLAG_NEWDICTIONARY) != 0;
    const Binding patcher_being_filled(gensym("#P"), &patcher);
    const BoxBeingMade box_being_made(patcher, dictionary);
    std::vector<t_atom> atoms;
    if (takes_dictionary) {
        add_defaults(cls, dictionary);
        atom_setobj(&atoms.emplace_back(), dictionary);
    }
    atoms.insert(atoms.end(), arguments.begin(), arguments.end());
    using Constructor = t_object *(*)(t_symbol *, long, t_atom *);
    t_object *box =
        reinterpret_cast<Constructor>(cls.construct)(cls.name, static_cast<long>(atoms.size()), atoms.data());
    if (box)
        for (PatcherView *view : patcher.views)
            object_method(box, gensym("newpatcherview"), view);
    return box;
}

std::string complaint_about_id(const Patcher &patcher, const t_dictionary *dictionary) {
    const std::span<const t_atom> id = atoms_under(dictionary, "id");
    if (id.empty() || !patcher.by_id.contains(atom_getsym(id.data())))
        return "";
    return std::string("another box has the id \"") + atom_getsym(id.data())->s_name + "\" already";
}

t_object *find_box(const Patcher &patcher, t_symbol *name) {
    if (t_object *named = first_of(patcher.by_name, name))
        return named;
    t_object *numbered = first_of(patcher.by_id, name);
    return numbered ? numbered : find_inner_box(patcher, name->s_name);
}

std::list<t_jbox *>::iterator enter_box(Patcher &patcher, t_jbox *box) {
    if (!box->b_id || patcher.by_id.contains(box->b_id))
        box->b_id = new_id(patcher);
    const auto place = patcher.boxes.insert(patcher.boxes.end(), box);
    try {
        if (box->b_name)
            patcher.by_name[box->b_name].push_back(box);
        patcher.by_id[box->b_id].push_back(box);
    } catch (const std::bad_alloc &) {
        leave_patcher(patcher, box, place);
        throw;
    }
    tell_of_change(patcher);
    return place;
}

void leave_patcher(Patcher &patcher, t_jbox *box, std::list<t_jbox *>::iterator place) {
    forget_name(patcher.by_name, box->b_name, box);
    forget_name(patcher.by_id, box->b_id, box);
    patcher.boxes.erase(place);
    tell_of_change(patcher);
}

void tell_of_change(Patcher &patcher) {
    if (front_end().patcher_changed)
        front_end().patcher_changed(&patcher);
}

Patcher &outermost(Patcher &patcher) {
    Patcher *around = patcher.owner ? as<Patcher>(patcher.owner->b_patcher) : nullptr;
    return around ? outermost(*around) : patcher;
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
    for (t_jbox *box : patcher->boxes) // at once, before they go one after the other
        forget_cords(&box->b_ob);
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
    Patcher &whole = outermost(*patcher);
    if (whole.dirty.exchange(c != 0) != (c != 0))
        tell_of_change(whole);
    return MAX_ERR_NONE;
}

t_object *patcherview_get_jgraphics(t_object *pv) {
    auto *view = expect<PatcherView>(pv, "patcherview_get_jgraphics");
    return view ? reinterpret_cast<t_object *>(view->context) : nullptr;
}
