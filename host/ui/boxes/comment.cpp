// The comment: a text to be read.
#include "kernel/atomtext.h"
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct CommentParts {
    BoxText text;
};
using Comment = HostBox<CommentParts>;

t_class *comment_class;

void comment_set(Comment *x, t_symbol *, long argc, t_atom *argv) {
    {
        const HeldRegion hold;
        change_text(x->parts->text, typed_atoms({argv, static_cast<size_t>(argc)}));
    }
    show_again(&x->box);
}

void comment_content(Comment *x, std::vector<t_atom> *content) {
    const HeldRegion hold;
    content->push_back(symbol_atom(gensym(x->parts->text.shown.c_str())));
}

void comment_save(Comment *x, t_dictionary *dictionary) {
    const HeldRegion hold;
    save_text(dictionary, x->parts->text);
}

void comment_assist(Comment *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Set the text"}, {});
}

void *comment_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<CommentParts>(comment_class, argc, argv);
    if (!x)
        return nullptr;
    const std::span<const t_atom> typed = typed_arguments(argc, argv);
    x->parts->text = read_text(object_dictionaryarg(argc, argv));
    if (!typed.empty())
        change_text(x->parts->text, typed_atoms(typed));
    return finish_box(x, argc, argv);
}

} // namespace

void register_comment() {
    comment_class = new_box_class<CommentParts>("comment", comment_new, BoxKind::shown);
    add_method(comment_class, comment_set, "set");
    add_private(comment_class, comment_save, "jsave");
    add_private(comment_class, comment_content, "boxcontent");
    add_private(comment_class, comment_assist, "assist");
    class_register(CLASS_BOX, comment_class);
}

} // namespace maxhost
