// Patcher files.
#include "ui/patcherfile.h"

#include "ext_proto.h"
#include "kernel/console.h"
#include "kernel/scheduler.h"
#include "ui/box.h"
#include "ui/patcherdocument.h"
#include "ui/patcherreader.h"
#include "ui/patcherwriter.h"
#include "ui/textpatcher.h"

namespace maxhost {
namespace {

void send_loadbang(const Patcher &patcher) {
    const std::list<t_jbox *> boxes = patcher.boxes; // a box may change them
    for (t_jbox *box : boxes)
        if (const BoxState *state = box_state(box); state && state->inner)
            send_loadbang(*state->inner);
    for (t_jbox *box : boxes)
        if (box_state(box))
            object_method(box, gensym("loadbang"));
}

Patcher *read_json_patcher(const std::string &text, const std::string &file_name, std::string &reason) {
    Json file;
    if (!parse_json(text, file, reason))
        return nullptr;
    const Json *described = member(file, "patcher");
    if (!described || !described->is_object()) {
        reason = "no patcher: no object \"patcher\" is in it";
        return nullptr;
    }
    auto *patcher = create<Patcher>();
    PatcherReader(file_name).fill(*patcher, std::move(file["patcher"]), "patcher");
    file["patcher"] = nullptr;
    patcher->document->file = std::move(file);
    return patcher;
}

} // namespace

Patcher *read_patcher(const std::string &text, const std::string &file_name, std::string &reason) {
    Patcher *patcher = nullptr;
    between_deliveries([&] { // a box that listens to a name is heard of before its cords are there
        patcher = is_text_patcher(text) ? read_text_patcher(text, file_name, reason)
                                        : read_json_patcher(text, file_name, reason);
    });
    if (!patcher)
        return nullptr;
    send_loadbang(*patcher);
    patcher->dirty = false;
    return patcher;
}

std::string patcher_text(Patcher &patcher) {
    bool replaced = false;
    std::string text = json_text(saved_file(patcher), replaced);
    if (replaced)
        console_warning(nullptr, "what is not UTF-8 is saved with replacement characters");
    return text;
}

} // namespace maxhost
