// Writing patchers.
#include "ui/patcherwriter.h"

#include <algorithm>

#include "kernel/atomtext.h"
#include "kernel/console.h"
#include "kernel/outlets.h"
#include "kernel/scheduler.h"
#include "ui/patcherdocument.h"

namespace maxhost {
namespace {

PatcherDocument &document_of(Patcher &patcher) {
    if (!patcher.document)
        patcher.document.reset(new PatcherDocument{});
    if (patcher.document->patcher.is_null())
        patcher.document->patcher = new_description();
    return *patcher.document;
}

bool same_atoms(std::span<const t_atom> some, std::span<const t_atom> others) {
    return std::equal(some.begin(), some.end(), others.begin(), others.end(), [](const t_atom &a, const t_atom &b) {
        if (a.a_type != b.a_type)
            return false;
        return a.a_type == A_FLOAT ? a.a_w.w_float == b.a_w.w_float : a.a_w.w_long == b.a_w.w_long;
    });
}

// ---- boxes

// What every box says that is in no file yet. Whoever made it may have said something else of its id, inlets and
// outlets.
void complete_entry(Json &entry, t_jbox *box) {
    Json types = Json::array();
    for (long i = 0; i < outlet_count(&box->b_ob); ++i) {
        const t_symbol *message = outlet_of(&box->b_ob, i)->message;
        types.push_back(message ? message->s_name : "");
    }
    put(entry, "id", box->b_id->s_name);
    if (!entry.contains("maxclass"))
        put(entry, "maxclass", record_of(box)->cls->name->s_name);
    put(entry, "numinlets", inlet_count(&box->b_ob));
    put(entry, "numoutlets", types.size());
    if (types.empty())
        entry.erase("outlettype");
    else
        put(entry, "outlettype", std::move(types));
}

// The attributes of an object box stand apart from those that every box has.
Json &attribute_place(Json &entry, const std::string &key) {
    const bool is_of_every_box = key == "patching_rect" || key == "fontname" || key == "fontsize";
    const Json *maxclass = member(entry, "maxclass");
    if (is_of_every_box || !maxclass || *maxclass != "newobj")
        return entry;
    if (const Json *apart = member(entry, "saved_object_attributes"); !apart || !apart->is_object())
        put(entry, "saved_object_attributes", Json::object());
    return entry["saved_object_attributes"];
}

void put_atoms(Json &object, const std::string &key, std::span<const t_atom> atoms) {
    const Json *before = member(object, key.c_str());
    put(object, key, to_json(atoms, before && before->is_array()));
}

std::span<const t_atom> atoms_of(const DictionaryEntries &entries, const t_symbol *key) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const auto &each) { return each.first == key; });
    return found == entries.end() ? std::span<const t_atom>() : found->second;
}

// The attributes that have another value than the file has; for a box that is in no file, all that are saved.
void save_attributes(KeptBox &kept, t_jbox *box) {
    DictionaryEntries now = saved_attributes(&box->b_ob);
    for (const auto &[key, atoms] : now)
        if (kept.element < 0 || !same_atoms(atoms, atoms_of(kept.attributes, key)))
            put_atoms(attribute_place(kept.entry, key->s_name), key->s_name, atoms);
    kept.attributes = std::move(now);
}

// What the box brings by itself, and no longer what it does not bring any more.
void save_own(KeptBox &kept, t_jbox *box) {
    const OwnedDictionary brought = new_dictionary();
    object_method(box, gensym("jsave"), brought.get());
    for (t_symbol *key : kept.own_keys)
        if (!brought->index.contains(key))
            kept.entry.erase(key->s_name);
    std::vector<t_atom> before;
    for (const auto &[key, atoms] : brought->entries) {
        const Json *there = member(kept.entry, key->s_name);
        if (!there || !to_atoms(*there, before) || !same_atoms(before, atoms))
            put_atoms(kept.entry, key->s_name, atoms);
        kept.own_keys.insert(key);
    }
}

Json saved_patcher(Patcher &patcher);

// The object under "box".
Json saved_entry(t_jbox *box) {
    KeptBox &kept = kept_box(box);
    if (kept.element < 0)
        complete_entry(kept.entry, box);
    save_attributes(kept, box);
    save_own(kept, box);
    Patcher *inner = box_state(box)->inner;
    const bool has_inner = inner && (kept.entry.contains("patcher") || !inner->boxes.empty());
    if (has_inner && !kept.entry.contains("patcher"))
        put(kept.entry, "patcher", nullptr);
    Json entry = kept.entry;
    if (has_inner && (inner->document || !inner->boxes.empty() || entry["patcher"].is_null()))
        entry["patcher"] = saved_patcher(*inner);
    return entry;
}

Json saved_boxes(Patcher &patcher, std::vector<Element> &elements) {
    std::vector<t_jbox *> living(elements.size());
    for (t_jbox *box : patcher.boxes) {
        const long element = kept_box(box).element;
        if (element >= 0)
            living[static_cast<size_t>(element)] = box;
    }
    std::vector<Element> remaining;
    Json saved = Json::array();
    const auto keep = [&](Element element, t_jbox *box) {
        saved.push_back(element.json);
        if (box) {
            saved.back()["box"] = saved_entry(box);
            kept_box(box).element = static_cast<long>(remaining.size());
        }
        remaining.push_back(std::move(element));
    };
    for (size_t i = 0; i < elements.size(); ++i)
        if (!elements[i].made || living[i])
            keep(std::move(elements[i]), living[i]);
    for (t_jbox *box : patcher.boxes)
        if (kept_box(box).element < 0)
            keep({Json::object({{"box", nullptr}}), true}, box);
    elements = std::move(remaining);
    return saved;
}

// ---- cords

struct LivingCord {
    t_jbox *from;
    long outlet;
    Cord *cord;
    std::optional<long> order; // to be written: the file has none that tells
};

// The cords of a patcher; where new ones have come to an outlet, all of them have their order told.
std::vector<LivingCord> living_cords(const Patcher &patcher) {
    std::vector<LivingCord> all;
    for (t_jbox *box : patcher.boxes) {
        for (long i = 0; i < outlet_count(&box->b_ob); ++i) {
            std::vector<Cord> &cords = outlet_of(&box->b_ob, i)->cords;
            const bool has_new = std::any_of(cords.begin(), cords.end(), [](const Cord &c) { return c.line < 0; });
            for (size_t n = 0; n < cords.size(); ++n) {
                const bool tell = has_new && cords.size() > 1;
                all.push_back({box, i, &cords[n], tell ? std::optional<long>(n) : std::nullopt});
            }
        }
    }
    return all;
}

// The id of a box as its entry has it; an entry that had none, or that of another box, gets the right one.
const char *id_in_file(t_jbox *box) {
    put(kept_box(box).entry, "id", box->b_id->s_name);
    return box->b_id->s_name;
}

Json new_line(const LivingCord &cord) {
    Json ends = Json::object();
    ends["destination"] = Json::array({id_in_file(reinterpret_cast<t_jbox *>(cord.cord->receiver)), cord.cord->inlet});
    ends["source"] = Json::array({id_in_file(cord.from), cord.outlet});
    return Json::object({{"patchline", std::move(ends)}});
}

// Called before the boxes are saved, which may get an id here.
Json saved_lines(const Patcher &patcher, std::vector<Element> &elements) {
    std::vector<LivingCord> cords = living_cords(patcher);
    std::vector<const LivingCord *> living(elements.size());
    for (const LivingCord &cord : cords)
        if (cord.cord->line >= 0)
            living[static_cast<size_t>(cord.cord->line)] = &cord;
    std::vector<Element> remaining;
    const auto keep = [&](Element element, const LivingCord *cord) {
        if (cord && cord->order)
            put(element.json["patchline"], "order", *cord->order);
        if (cord)
            cord->cord->line = static_cast<long>(remaining.size());
        remaining.push_back(std::move(element));
    };
    for (size_t i = 0; i < elements.size(); ++i)
        if (!elements[i].made || living[i])
            keep(std::move(elements[i]), living[i]);
    for (const LivingCord &cord : cords)
        if (cord.cord->line < 0)
            keep({new_line(cord), true}, &cord);
    elements = std::move(remaining);
    Json saved = Json::array();
    for (const Element &element : elements)
        saved.push_back(element.json);
    return saved;
}

// Sets the list under a key, unless the file has something else there and there is nothing to add.
void put_list(Json &patcher, const char *key, Json list) {
    const Json *there = member(patcher, key);
    if (!list.empty() || (there && there->is_array()))
        put(patcher, key, std::move(list));
}

Json saved_patcher(Patcher &patcher) {
    PatcherDocument &document = document_of(patcher);
    Json saved = document.patcher;
    Json lines;
    between_deliveries([&] { lines = saved_lines(patcher, document.lines); }); // cords learn their places
    put_list(saved, "boxes", saved_boxes(patcher, document.boxes));
    put_list(saved, "lines", std::move(lines));
    return saved;
}

} // namespace

t_object *make_new_box(Patcher &patcher, t_symbol *class_name, t_dictionary *dictionary,
                       std::span<const t_atom> arguments) {
    const Class *cls = find_class(CLASS_BOX, class_name);
    if (!cls)
        return nullptr;
    Json entry = Json::object();
    for (const auto &[key, atoms] : dictionary->entries)
        put(entry, key->s_name, to_json(atoms, false));
    std::string typed = class_name->s_name;
    if (!arguments.empty())
        typed += " " + typed_atoms(arguments);
    put(entry, "maxclass", cls->is_typed ? "newobj" : cls->name->s_name);
    if (cls->is_typed)
        put(entry, "text", typed);
    const std::string complaint = complaint_about_id(patcher, dictionary);
    t_object *made = make_box(patcher, *cls, dictionary, arguments);
    if (!made || !box_state(made))
        return made;
    if (!complaint.empty())
        console_warning(made, complaint);
    KeptBox &kept = kept_box(reinterpret_cast<t_jbox *>(made));
    kept.entry = std::move(entry);
    kept.own_keys = dictionary->asked;
    return made;
}

Json saved_file(Patcher &patcher) {
    Json saved = saved_patcher(patcher);
    Json file = patcher.document->file.is_null() ? Json::object() : patcher.document->file;
    file["patcher"] = std::move(saved);
    return file;
}

} // namespace maxhost
