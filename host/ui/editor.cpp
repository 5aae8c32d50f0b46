// The text editor.
#include "ui/editor.h"

#include "ext_proto.h"
#include "kernel/attributes.h"
#include "kernel/frontend.h"
#include "kernel/objects.h"

namespace maxhost {
namespace {

void tell(Editor &editor, EditorEvent event) {
    if (front_end().editor)
        front_end().editor(&editor, event);
}

void *new_editor(t_object *owner) {
    auto *editor = create<Editor>();
    editor->owner = owner;
    editor->title = gensym("");
    tell(*editor, EditorEvent::open);
    return editor;
}

void editor_settext(Editor *editor, const char *text, t_symbol *) {
    editor->text = text;
    tell(*editor, EditorEvent::text);
}

void editor_filename(Editor *editor, const char *name, t_ptr_int folder) {
    editor->file = name;
    editor->folder = static_cast<short>(folder);
    tell(*editor, EditorEvent::file);
}

void free_editor(Editor *editor) { tell(*editor, EditorEvent::close); }

t_max_err get_title(Editor *editor, void *, long *ac, t_atom **av) {
    char allocated;
    const t_max_err result = atom_alloc(ac, av, &allocated);
    return result ? result : atom_setsym(*av, editor->title);
}

t_max_err set_title(Editor *editor, void *, long ac, t_atom *av) {
    if (ac < 1)
        return MAX_ERR_GENERIC;
    editor->title = atom_getsym(av);
    tell(*editor, EditorEvent::title);
    return MAX_ERR_NONE;
}

t_max_err get_visible(Editor *editor, void *, long *ac, t_atom **av) {
    char allocated;
    const t_max_err result = atom_alloc(ac, av, &allocated);
    return result ? result : atom_setlong(*av, editor->visible);
}

t_max_err set_visible(Editor *editor, void *, long ac, t_atom *av) {
    if (ac < 1)
        return MAX_ERR_GENERIC;
    editor->visible = atom_getlong(av) != 0;
    tell(*editor, EditorEvent::visible);
    return MAX_ERR_NONE;
}

template <typename Getter, typename Setter>
void add_attribute(Class *cls, const char *name, const char *type, Getter get, Setter set) {
    class_addattr(cls, attr_offset_new(name, gensym(type), ATTR_FLAGS_NONE, reinterpret_cast<method>(get),
                                       reinterpret_cast<method>(set), 0));
}

// The owner of an editor, unless it has gone.
t_object *living_owner(const Editor &editor) {
    return editor.owner && record_of(editor.owner) ? editor.owner : nullptr;
}

} // namespace

Class *Editor::host_class() {
    static Class *const cls = [] {
        Class *made = new_host_class("jed", true);
        made->construct = reinterpret_cast<method>(new_editor);
        made->methods = {{gensym("settext"), reinterpret_cast<method>(editor_settext), {A_CANT}},
                         {gensym("filename"), reinterpret_cast<method>(editor_filename), {A_CANT}}};
        made->destroy = reinterpret_cast<method>(free_editor);
        add_attribute(made, "title", "symbol", get_title, set_title);
        add_attribute(made, "visible", "char", get_visible, set_visible);
        return made;
    }();
    return cls;
}

void register_editor() { Editor::host_class(); }

bool save_editor(Editor &editor) {
    t_object *owner = living_owner(editor);
    char *text = editor.text.data();
    void *result = owner ? object_method(owner, gensym("edsave"), &text, static_cast<long>(editor.text.size()),
                                         editor.file.c_str(), editor.folder)
                         : nullptr;
    return reinterpret_cast<t_ptr_int>(result) > 0;
}

void close_editor(Editor *editor) {
    if (t_object *owner = living_owner(*editor)) {
        char *text = editor->text.data();
        object_method(owner, gensym("edclose"), &text, static_cast<long>(editor->text.size()));
    }
    object_free(editor);
}

} // namespace maxhost
