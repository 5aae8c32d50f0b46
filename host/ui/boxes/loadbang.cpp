// loadbang: a bang when the patcher has been opened.
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct LoadbangParts {
    void *outlet = nullptr;
};
using Loadbang = HostBox<LoadbangParts>;

t_class *loadbang_class;

void loadbang_bang(Loadbang *x) { send_bang(x->parts->outlet); }

void loadbang_assist(Loadbang *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Bang to send one at once"}, {"Bang when the patcher has been opened"});
}

void *loadbang_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<LoadbangParts>(loadbang_class, argc, argv);
    if (!x)
        return nullptr;
    x->parts->outlet = outlet_new(x, "bang");
    return finish_box(x, argc, argv);
}

} // namespace

void register_loadbang() {
    loadbang_class = new_box_class<LoadbangParts>("loadbang", loadbang_new, BoxKind::typed);
    class_addmethod(loadbang_class, reinterpret_cast<method>(loadbang_bang), "bang", 0);
    add_private(loadbang_class, loadbang_bang, "loadbang");
    add_private(loadbang_class, loadbang_bang, "click");
    add_private(loadbang_class, loadbang_assist, "assist");
    class_register(CLASS_BOX, loadbang_class);
}

} // namespace maxhost
