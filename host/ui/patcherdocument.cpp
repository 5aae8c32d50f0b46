// What is kept of patcher files.
#include "ui/patcherdocument.h"

#include "kernel/attributes.h"

namespace maxhost {

void KeptBoxReleaser::operator()(KeptBox *kept) const { delete kept; }
void DocumentReleaser::operator()(PatcherDocument *document) const { delete document; }

PatcherDocument::~PatcherDocument() {
    dismantle(file);
    dismantle(patcher);
    for (std::vector<Element> *elements : {&boxes, &lines})
        for (Element &each : *elements)
            dismantle(each.json);
}

Json new_description() {
    return Json::parse(R"({"fileversion": 1,
        "appversion": {"major": 9, "minor": 1, "revision": 0, "architecture": "x64", "modernui": 1},
        "classnamespace": "box", "rect": [100.0, 100.0, 640.0, 480.0], "default_fontname": "Arial",
        "gridsize": [15.0, 15.0], "boxes": [], "lines": []})");
}

KeptBox &kept_box(t_jbox *box) {
    BoxState &state = *box_state(box);
    if (!state.kept) {
        state.kept.reset(new KeptBox{});
        state.kept->entry = Json::object();
    }
    return *state.kept;
}

DictionaryEntries saved_attributes(t_object *box) {
    const OwnedDictionary dictionary = new_dictionary();
    save_attributes(box, *record_of(box)->cls, dictionary.get());
    return std::move(dictionary->entries);
}

} // namespace maxhost
