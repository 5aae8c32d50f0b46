// Reading patchers.
#include "ui/patcherreader.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <unordered_map>

#include "kernel/atomtext.h"
#include "kernel/console.h"
#include "kernel/outlets.h"
#include "ui/inertbox.h"
#include "ui/patcherdocument.h"

namespace maxhost {
namespace {

constexpr size_t longest_warning = 500; // bytes

// The N of "obj-N"; 0 for any other id.
long number_of_id(std::string_view id) {
    if (!id.starts_with("obj-") || id.size() > 4 + 9)
        return 0;
    long number = 0;
    const char *end = id.data() + id.size();
    return std::from_chars(id.data() + 4, end, number).ptr == end ? std::max(number, 0L) : 0;
}

// The highest N of the ids "obj-N" of boxes.
long highest_id(const std::vector<Element> &elements) {
    long highest = 0;
    for (const Element &element : elements)
        if (const Json *box = member(element.json, "box"))
            if (const Json *id = member(*box, "id"); id && id->is_string())
                highest = std::max(highest, number_of_id(id->get_ref<const std::string &>()));
    return highest;
}

// Takes the list under a key out, and leaves an empty one in its place.
std::vector<Element> take_elements(Json &object, const char *key) {
    std::vector<Element> elements;
    for (Json &each : object[key])
        elements.push_back({std::move(each), false});
    object[key] = Json::array();
    return elements;
}

// Puts every member of an object that atoms can hold into the dictionary.
void add_members(t_dictionary *dictionary, const Json &object) {
    std::vector<t_atom> atoms;
    for (const auto &[key, value] : object.get_ref<const Json::object_t &>())
        if (to_atoms(value, atoms))
            dictionary_appendatoms(dictionary, gensym(key.c_str()), static_cast<long>(atoms.size()), atoms.data());
}

bool starts_attribute(const t_atom &atom) {
    const char *text = atom_getsym(&atom)->s_name;
    return text[0] == '@' && text[1] != 0;
}

// The typed text of an object box: class, arguments, @attributes.
t_symbol *read_typed(std::string_view text, std::vector<t_atom> &arguments, t_dictionary *dictionary) {
    std::vector<t_atom> atoms = parse_atoms(text);
    if (atoms.empty())
        return gensym("");
    t_symbol *class_name =
        atom_gettype(&atoms[0]) == A_SYM ? atom_getsym(&atoms[0]) : gensym(print_atom(atoms[0]).c_str());
    auto at = std::find_if(atoms.begin() + 1, atoms.end(), starts_attribute);
    arguments.assign(atoms.begin() + 1, at);
    while (at != atoms.end()) {
        const auto next = std::find_if(at + 1, atoms.end(), starts_attribute);
        dictionary_appendatoms(dictionary, gensym(atom_getsym(&*at)->s_name + 1), next - at - 1,
                               next - at > 1 ? &*at + 1 : nullptr);
        at = next;
    }
    return class_name;
}

// Where a cord ends on the screen.
struct Place {
    double x, y;
};

Place place_of(const Cord &cord) {
    const t_rect &rect = reinterpret_cast<t_jbox *>(cord.receiver)->b_patching_rect;
    const long inlets = inlet_count(cord.receiver);
    const double along = inlets > 1 ? static_cast<double>(cord.inlet) / static_cast<double>(inlets - 1) : 0;
    return {rect.x + along * rect.width, rect.y};
}

} // namespace

// A patcher that is being filled.
struct PatcherReader::OpenPatcher {
    Patcher &patcher;
    PatcherDocument &document;
    std::string where;
    std::unordered_map<std::string_view, t_object *> by_id; // as the file has the ids
    std::vector<std::optional<t_atom_long>> order_of;       // of the cords
};

void PatcherReader::warn(const std::string &where, const std::string &text) {
    console_warning(nullptr, cut(file_name_ + ": " + where + ": " + text, longest_warning));
}

void PatcherReader::fill(Patcher &patcher, Json described, const std::string &where) {
    patcher.document.reset(new PatcherDocument{});
    patcher.document->patcher = std::move(described);
    OpenPatcher open{patcher, *patcher.document, where, {}, {}};
    make_boxes(open);
    make_lines(open);
    sort_cords(patcher, open.order_of);
}

void PatcherReader::make_boxes(OpenPatcher &open) {
    const Json *boxes = member(open.document.patcher, "boxes");
    if (!boxes)
        return;
    if (!boxes->is_array())
        return warn(open.where + ".boxes", std::string("a list belongs here, not ") + kind_of(*boxes));
    std::vector<Element> &elements = open.document.boxes = take_elements(open.document.patcher, "boxes");
    open.patcher.newest_id = highest_id(elements); // new ones begin behind those of the file
    for (size_t i = 0; i < elements.size(); ++i) {
        const std::string where = open.where + ".boxes[" + std::to_string(i) + "]";
        const Json *found = member(elements[i].json, "box");
        if (!found || !found->is_object()) {
            warn(where, "no object \"box\" is here");
            continue;
        }
        Json &box = elements[i].json["box"];
        t_object *made = make(open.patcher, box, where + ".box", static_cast<long>(i));
        elements[i].made = made != nullptr;
        const Json *id = made ? member(kept_box(reinterpret_cast<t_jbox *>(made)).entry, "id") : nullptr;
        if (id && id->is_string())
            open.by_id.emplace(id->get_ref<const std::string &>(), made);
    }
}

// ---- boxes

t_object *PatcherReader::make(Patcher &patcher, Json &entry, const std::string &where, long element) {
    const OwnedDictionary dictionary = new_dictionary();
    std::vector<t_atom> arguments;
    add_members(dictionary.get(), entry);
    t_symbol *class_name = class_named_by(entry, where, arguments, dictionary.get());
    if (const std::string complaint = complaint_about_id(patcher, dictionary.get()); !complaint.empty())
        warn(where + ".id", complaint);
    t_object *made = make_of_class(patcher, class_name, dictionary.get(), arguments);
    if (!made) {
        warn(where, "out of memory");
        return nullptr;
    }
    KeptBox &kept = kept_box(reinterpret_cast<t_jbox *>(made));
    fill_inner(made, entry, where);
    kept.entry = std::move(entry);
    kept.attributes = saved_attributes(made);
    kept.own_keys = std::move(dictionary->asked);
    kept.element = element;
    return made;
}

// The class, and what its text says besides.
t_symbol *PatcherReader::class_named_by(const Json &entry, const std::string &where, std::vector<t_atom> &arguments,
                                        t_dictionary *dictionary) {
    const Json *maxclass = member(entry, "maxclass");
    if (!maxclass || !maxclass->is_string()) {
        warn(where + ".maxclass",
             std::string("a text belongs here, not ") + (maxclass ? kind_of(*maxclass) : "nothing"));
        return gensym("");
    }
    if (*maxclass != "newobj")
        return gensym(maxclass->get_ref<const std::string &>().c_str());
    const Json *text = member(entry, "text");
    if (!text || !text->is_string()) {
        warn(where + ".text", std::string("a text belongs here, not ") + (text ? kind_of(*text) : "nothing"));
        return gensym("");
    }
    t_symbol *class_name = read_typed(text->get_ref<const std::string &>(), arguments, dictionary);
    if (const Json *saved = member(entry, "saved_object_attributes"); saved && saved->is_object())
        add_members(dictionary, *saved);
    return class_name;
}

t_object *PatcherReader::make_of_class(Patcher &patcher, t_symbol *class_name, t_dictionary *dictionary,
                                       std::span<const t_atom> arguments) {
    const Class *cls = find_class(CLASS_BOX, class_name);
    t_object *made = cls ? make_box(patcher, *cls, dictionary, arguments) : nullptr;
    if (made && box_state(made))
        return made;
    object_free(made); // of a class whose instances have no box part
    made = make_box(patcher, inert_class(), dictionary, {});
    if (made && unknown_.insert(class_name).second)
        console_warning(made, file_name_ + ": " + (cls ? "no box can be made of the class \"" : "unknown class \"") +
                                  class_name->s_name + "\": its boxes are kept and do nothing");
    return made;
}

// The patcher in the box.
void PatcherReader::fill_inner(t_object *box, Json &entry, const std::string &where) {
    Patcher *inner = box_state(box)->inner;
    if (!inner)
        return;
    const Json *described = member(entry, "patcher");
    if (described && described->is_object()) {
        fill(*inner, std::move(entry["patcher"]), where + ".patcher");
        entry["patcher"] = nullptr;
    } else if (described) {
        warn(where + ".patcher", std::string("an object belongs here, not ") + kind_of(*described));
    }
    object_method(box, gensym("patcherfilled"));
}

// ---- cords

void PatcherReader::make_lines(OpenPatcher &open) {
    const Json *lines = member(open.document.patcher, "lines");
    if (!lines)
        return;
    if (!lines->is_array())
        return warn(open.where + ".lines", std::string("a list belongs here, not ") + kind_of(*lines));
    std::vector<Element> &elements = open.document.lines = take_elements(open.document.patcher, "lines");
    open.order_of.resize(elements.size());
    for (size_t i = 0; i < elements.size(); ++i) {
        const std::string where = open.where + ".lines[" + std::to_string(i) + "]";
        const Json *line = member(elements[i].json, "patchline");
        if (line && line->is_object())
            make_line(open, *line, where + ".patchline", static_cast<long>(i));
        else
            warn(where, "no object \"patchline\" is here");
    }
}

void PatcherReader::make_line(OpenPatcher &open, const Json &described, const std::string &where, long line) {
    long outlet_number = 0, inlet = 0;
    t_object *from = find_end(open, described, "source", where, outlet_number);
    t_object *to = from ? find_end(open, described, "destination", where, inlet) : nullptr;
    if (!to)
        return;
    Outlet *outlet = outlet_of(from, outlet_number);
    if (!outlet)
        return warn(where + ".source", "the box has no outlet " + std::to_string(outlet_number));
    if (inlet < 0 || inlet >= inlet_count(to))
        return warn(where + ".destination", "the box has no inlet " + std::to_string(inlet));
    connect(*outlet, {to, inlet, line});
    open.document.lines[static_cast<size_t>(line)].made = true;
    if (const Json *order = member(described, "order"); order && order->is_number_integer())
        open.order_of[static_cast<size_t>(line)] = order->get<t_atom_long>();
}

// The box and the number of ["obj-1", 0]; null when there is none.
t_object *PatcherReader::find_end(OpenPatcher &open, const Json &line, const char *end, const std::string &where,
                                  long &number) {
    const Json *found = member(line, end);
    const bool fits =
        found && found->is_array() && found->size() >= 2 && (*found)[0].is_string() && (*found)[1].is_number_integer();
    if (!fits) {
        warn(where + "." + end, "the id of a box and a number belong here");
        return nullptr;
    }
    const auto &id = (*found)[0].get_ref<const std::string &>();
    number = static_cast<long>((*found)[1].get<t_atom_long>());
    auto box = open.by_id.find(id);
    if (box == open.by_id.end())
        warn(where + "." + end, "no box has the id \"" + id + "\"");
    return box == open.by_id.end() ? nullptr : box->second;
}

void sort_cords(Patcher &patcher, const std::vector<std::optional<t_atom_long>> &order_of) {
    const auto order = [&](const Cord &cord) { return order_of[static_cast<size_t>(cord.line)]; };
    const auto has_order = [&](const Cord &cord) {
        return cord.line >= 0 && static_cast<size_t>(cord.line) < order_of.size() && order(cord).has_value();
    };
    for (t_jbox *box : patcher.boxes) {
        for (long i = 0; i < outlet_count(&box->b_ob); ++i) {
            std::vector<Cord> &cords = outlet_of(&box->b_ob, i)->cords;
            if (std::all_of(cords.begin(), cords.end(), has_order))
                std::stable_sort(cords.begin(), cords.end(),
                                 [&](const Cord &a, const Cord &b) { return order(a) < order(b); });
            else
                std::stable_sort(cords.begin(), cords.end(), [](const Cord &a, const Cord &b) {
                    const Place at = place_of(a), other = place_of(b);
                    return at.x != other.x ? at.x > other.x : at.y > other.y;
                });
        }
    }
}

} // namespace maxhost
