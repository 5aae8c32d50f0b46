// What a program shows of patchers and boxes.
#include "embed/shown.h"

#include <initializer_list>
#include <string_view>

#include "kernel/critical.h"
#include "kernel/objects.h"
#include "kernel/outlets.h"
#include "ui/box.h"
#include "ui/patcher.h"
#include "ui/patcherdocument.h"
#include "ui/surface.h"

namespace maxhost {
namespace {

// Only the host's own boxes answer what is said to their own kind: a plug-in may mean something else by the word.
bool is_own_box(t_object *box) {
    const Record *record = record_of(box);
    const std::string_view name = record ? record->cls->name->s_name : "";
    for (const char *each : {"message", "comment", "number", "flonum", "toggle", "textfield"})
        if (name == each)
            return true;
    return false;
}

// What is kept of the file; null when nothing is.
const Json *kept_description(t_object *object) {
    if (const auto *patcher = as<Patcher>(object))
        return patcher->document ? &patcher->document->patcher : nullptr;
    const BoxState *state = box_state(object);
    return state && state->kept ? &state->kept->entry : nullptr;
}

ShownCord shown_cord(const Patcher &patcher, t_jbox *from, long outlet, const Cord &cord) {
    ShownCord shown{&from->b_ob, outlet, cord.receiver, cord.inlet, false, {}};
    const PatcherDocument *document = patcher.document.get();
    if (!document || cord.line < 0)
        return shown;
    const Json *line = member(document->lines[static_cast<size_t>(cord.line)].json, "patchline");
    std::vector<t_atom> atoms;
    if (const Json *hidden = line ? member(*line, "hidden") : nullptr; hidden && to_atoms(*hidden, atoms))
        shown.hidden = !atoms.empty() && atom_getlong(atoms.data()) != 0;
    if (const Json *points = line ? member(*line, "midpoints") : nullptr; points && to_atoms(*points, atoms))
        for (const t_atom &atom : atoms)
            shown.midpoints.push_back(atom_getfloat(&atom));
    shown.midpoints.resize(shown.midpoints.size() / 2 * 2);
    return shown;
}

} // namespace

std::vector<t_atom> described(t_object *patcher_or_box, const char *key) {
    const Json *description = kept_description(patcher_or_box);
    const Json *found = description ? member(*description, key) : nullptr;
    std::vector<t_atom> atoms;
    if (!found || !to_atoms(*found, atoms))
        atoms.clear();
    return atoms;
}

std::vector<ShownCord> cords_in(t_object *patcher) {
    std::vector<ShownCord> cords;
    const auto *found = expect<Patcher>(patcher, "cords_in");
    if (!found)
        return cords;
    for (t_jbox *box : found->boxes)
        for (long i = 0; i < outlet_count(&box->b_ob); ++i)
            for (const Cord &cord : outlet_of(&box->b_ob, i)->cords)
                cords.push_back(shown_cord(*found, box, i, cord));
    return cords;
}

std::vector<t_atom> shown_value(t_object *box) {
    std::vector<t_atom> value;
    if (is_own_box(box))
        object_method(box, gensym("boxcontent"), &value);
    return value;
}

bool enter_value(t_object *box, std::span<const t_atom> value) {
    if (!is_own_box(box) || !find_method(*record_of(box)->cls, gensym("entered")))
        return false;
    std::vector<t_atom> atoms(value.begin(), value.end());
    object_method(box, gensym("entered"), static_cast<long>(atoms.size()), atoms.data());
    expect_no_region("an entered value");
    return true;
}

Pixels pixels_of(const t_jsurface &image) { return {image.rgba.data(), image.width, image.height}; }

t_object *box_around(t_object *patcher) {
    const auto *found = expect<Patcher>(patcher, "box_around");
    return found && found->owner ? &found->owner->b_ob : nullptr;
}

} // namespace maxhost
