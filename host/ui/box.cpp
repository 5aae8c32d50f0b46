// Boxes.
#include "ui/box.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "ext_obex_util.h"
#include "ext_proto.h"
#include "kernel/attributes.h"
#include "kernel/critical.h"
#include "kernel/dictionary.h"
#include "kernel/frontend.h"
#include "kernel/objects.h"
#include "kernel/outlets.h"
#include "kernel/trace.h"
#include "ui/dataview.h"
#include "ui/patcher.h"

namespace maxhost {
namespace {

constexpr double default_font_size = 12;
constexpr const char *default_font = "Arial";

// Sizes and places that a screen could show; anything else, not-a-number among it, becomes the nearest of them.
double within(double value, double least, double most) {
    return std::isnan(value) ? least : std::clamp(value, least, most);
}
double font_size_of(double value) { return within(value, 1, 1000); }
double place_of(double value) { return within(value, -1e6, 1e6); }
double extent_of(double value) { return within(value, 0, 1e6); }

t_rect rect_of(const double *parts) {
    return {place_of(parts[0]), place_of(parts[1]), extent_of(parts[2]), extent_of(parts[3])};
}

constexpr long class_flags = JBOX_COLOR | JBOX_FONTATTR | JBOX_FIXWIDTH;
constexpr long instance_flags = JBOX_DRAWFIRSTIN | JBOX_NODRAWBOX | JBOX_DRAWINLAST | JBOX_GROWBOTH;

t_jbox *expect_box(const void *box, const char *function) {
    if (!box_state(box)) {
        misuse(function, "not a living box");
        return nullptr;
    }
    return static_cast<t_jbox *>(const_cast<void *>(box));
}

BoxState &state_of(t_jbox *box) { return *static_cast<BoxState *>(box->obex); }

// ---- the attributes that every box has

t_max_err get_fontname(t_jbox *box, void *, long *ac, t_atom **av) {
    char allocated;
    const t_max_err result = atom_alloc(ac, av, &allocated);
    return result ? result : atom_setsym(*av, state_of(box).font_name);
}

t_max_err set_fontname(t_jbox *box, void *, long ac, t_atom *av) {
    if (ac < 1 || atom_gettype(av) != A_SYM || atom_getsym(av) == gensym(""))
        return MAX_ERR_GENERIC;
    state_of(box).font_name = atom_getsym(av);
    show_again(box);
    return MAX_ERR_NONE;
}

t_max_err get_fontsize(t_jbox *box, void *, long *ac, t_atom **av) {
    char allocated;
    const t_max_err result = atom_alloc(ac, av, &allocated);
    return result ? result : atom_setfloat(*av, state_of(box).font_size);
}

t_max_err set_fontsize(t_jbox *box, void *, long ac, t_atom *av) {
    if (ac < 1)
        return MAX_ERR_GENERIC;
    state_of(box).font_size = font_size_of(atom_getfloat(av));
    show_again(box);
    return MAX_ERR_NONE;
}

t_max_err set_patching_rect(t_jbox *box, void *, long ac, t_atom *av) {
    if (ac < 4)
        return MAX_ERR_GENERIC;
    double parts[4];
    for (int i = 0; i < 4; ++i)
        parts[i] = atom_getfloat(av + i);
    const HeldRegion hold; // messages set it on both threads
    box->b_patching_rect = rect_of(parts);
    show_again(box);
    return MAX_ERR_NONE;
}

void add_attribute(t_class *cls, const char *name, const char *type, long count, method get, method set, long offset) {
    t_object *attribute = attr_offset_array_new(name, gensym(type), count, ATTR_FLAGS_NONE, get, set, 0, offset);
    if (!attribute)
        return;
    class_addattr(cls, attribute);
    class_attr_addattr_parse(cls, name, "save", gensym("long"), 0, "1");
}

// ---- construction

t_symbol *symbol_under(const t_dictionary *dictionary, const char *key) {
    std::span<const t_atom> atoms = atoms_under(dictionary, key);
    return atoms.empty() || atom_getsym(atoms.data()) == gensym("") ? nullptr : atom_getsym(atoms.data());
}

using BoxSetter = t_max_err (*)(t_jbox *, void *, long, t_atom *);

// Hands the atoms under a key, if there are `least`, to an attribute's setter.
void read_value(t_jbox *box, const t_dictionary *dictionary, const char *key, size_t least, BoxSetter set) {
    std::span<const t_atom> found = atoms_under(dictionary, key);
    std::vector<t_atom> atoms(found.begin(), found.end());
    if (atoms.size() >= least)
        set(box, nullptr, static_cast<long>(atoms.size()), atoms.data());
}

void read_dictionary(t_jbox *box, const t_dictionary *dictionary) {
    read_value(box, dictionary, "patching_rect", 4, set_patching_rect);
    read_value(box, dictionary, "fontname", 1, set_fontname);
    read_value(box, dictionary, "fontsize", 1, set_fontsize);
    box->b_name = symbol_under(dictionary, "varname");
    box->b_id = symbol_under(dictionary, "id");
}

// Fills a box whose state is there, and enters it into the patcher that is being filled. A class may take no
// dictionary; the patcher has the one that the box is made from all the same.
void begin_box(t_jbox *box, const t_dictionary *dictionary) {
    auto *patcher = as<Patcher>(gensym("#P")->s_thing);
    if (!dictionary && patcher)
        dictionary = patcher->box_dictionary;
    if (dictionary)
        read_dictionary(box, dictionary);
    if (!patcher)
        return;
    state_of(box).place = enter_box(*patcher, box);
    box->b_patcher = patcher;
}

} // namespace

BoxState *box_state(const void *box) {
    const Record *record = box ? record_of(box) : nullptr;
    return record && record->cls->is_box ? static_cast<BoxState *>(static_cast<const t_jbox *>(box)->obex) : nullptr;
}

void show_again(t_jbox *box) {
    if (front_end().repaint)
        front_end().repaint(&box->b_ob);
}

} // namespace maxhost

using namespace maxhost;

void jbox_initclass(t_class *c, long flags) {
    auto *cls = static_cast<Class *>(c);
    if (!at_door(cls && cls->size >= sizeof(t_jbox), "jbox_initclass", "instances without room for the box part") ||
        !at_door((flags & ~class_flags) == 0, "jbox_initclass", "flags that this host does not have"))
        return;
    cls->is_box = true;
    cls->box_flags = flags;
    add_attribute(c, "patching_rect", "float64", 4, nullptr, reinterpret_cast<method>(set_patching_rect),
                  offsetof(t_jbox, b_patching_rect));
    if ((flags & JBOX_FONTATTR) == 0)
        return;
    add_attribute(c, "fontname", "symbol", 1, reinterpret_cast<method>(get_fontname),
                  reinterpret_cast<method>(set_fontname), 0);
    add_attribute(c, "fontsize", "float64", 1, reinterpret_cast<method>(get_fontsize),
                  reinterpret_cast<method>(set_fontsize), 0);
}

t_max_err jbox_new(t_jbox *b, long flags, long argc, t_atom *argv) {
    Record *record = expect_object(b, "jbox_new");
    if (!record || !at_door(record->cls->is_box && !b->obex, "jbox_new", "not a box class, or called twice"))
        return MAX_ERR_INVALID_PTR;
    if (!at_door((flags & ~instance_flags) == 0, "jbox_new", "flags that this host does not have"))
        return MAX_ERR_GENERIC;
    return guarded("jbox_new", t_max_err{MAX_ERR_OUT_OF_MEM}, [&] {
        std::unique_ptr<BoxState> state(
            new BoxState{gensym(default_font), default_font_size, flags, {}, nullptr, {}, {}});
        state->views.reserve(1); // so that the view of a usual box finds its place
        b->obex = state.get();
        try {
            begin_box(b, object_dictionaryarg(argc, argv));
        } catch (const std::bad_alloc &) {
            b->obex = nullptr;
            throw;
        }
        record->name = b->b_name ? b->b_name : b->b_id;
        static_cast<void>(state.release());
        return t_max_err{MAX_ERR_NONE};
    });
}

void jbox_ready(t_jbox *b) {
    if (expect_box(b, "jbox_ready"))
        record_of(b)->ready = true;
}

void jbox_free(t_jbox *b) {
    if (!expect_box(b, "jbox_free"))
        return;
    record_of(b)->ready = false;
    if (front_end().box_goes)
        front_end().box_goes(&b->b_ob);
    for (DataView *view : state_of(b).views)
        view->client = nullptr;
    cut_cords(&b->b_ob);
    if (auto *patcher = as<Patcher>(b->b_patcher))
        leave_patcher(*patcher, b, state_of(b).place);
    delete &state_of(b);
    b->obex = nullptr;
}

static t_max_err handle_notification(t_jbox *box, const t_symbol *message, const void *data) {
    const auto *attribute = as<Attribute>(data);
    if (message != gensym("attr_modified") || !attribute)
        return MAX_ERR_GENERIC;
    const std::span<const t_atom> paint = subattribute(*attribute, "paint");
    if (!paint.empty() && atom_getlong(paint.data()) != 0)
        show_again(box);
    return MAX_ERR_NONE;
}

t_max_err jbox_notify(t_jbox *b, t_symbol *s, t_symbol *msg, void *, void *data) {
    const t_max_err result =
        expect_box(b, "jbox_notify") ? handle_notification(b, msg, data) : t_max_err{MAX_ERR_INVALID_PTR};
    trace_result(trace_notify, result, "jbox_notify", s, msg);
    return result;
}

void jbox_redraw(t_jbox *b) {
    trace(trace_view, "jbox_redraw");
    if (expect_box(b, "jbox_redraw"))
        show_again(b);
}

t_symbol *jbox_get_fontname(t_object *b) {
    t_jbox *box = expect_box(b, "jbox_get_fontname");
    return box ? state_of(box).font_name.load() : gensym(default_font);
}

double jbox_get_fontsize(t_object *b) {
    t_jbox *box = expect_box(b, "jbox_get_fontsize");
    return box ? state_of(box).font_size.load() : default_font_size;
}

t_max_err jbox_set_fontname(t_object *b, t_symbol *ps) {
    return expect_box(b, "jbox_set_fontname") ? object_attr_setsym(b, gensym("fontname"), ps) : MAX_ERR_INVALID_PTR;
}

t_max_err jbox_set_fontsize(t_object *b, double d) {
    if (!expect_box(b, "jbox_set_fontsize"))
        return MAX_ERR_INVALID_PTR;
    Attribute *attribute = find_attribute(*record_of(b)->cls, gensym("fontsize"));
    t_atom size;
    atom_setfloat(&size, d);
    return attribute ? guarded("jbox_set_fontsize", t_max_err{MAX_ERR_OUT_OF_MEM},
                               [&] {
                                   return set_attribute(b, *attribute, {&size, 1});
                               })
                     : MAX_ERR_GENERIC;
}

t_object *jbox_get_patcher(t_object *b) {
    const t_jbox *box = expect_box(b, "jbox_get_patcher");
    return box ? box->b_patcher : nullptr;
}

t_max_err jbox_get_patching_rect(t_object *box, t_rect *pr) {
    const t_jbox *b = expect_box(box, "jbox_get_patching_rect");
    if (!b || !at_door(pr, "jbox_get_patching_rect", "nowhere to put it"))
        return MAX_ERR_INVALID_PTR;
    const HeldRegion hold;
    *pr = b->b_patching_rect;
    return MAX_ERR_NONE;
}
