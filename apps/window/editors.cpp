// The windows of the host's text editors.
#include "editors.h"

#include "editorwindow.h"
#include "session.h"

using namespace maxhost;

EditorWindow *Editors::window_of(t_object *editor) const {
    const auto found = windows_.find(editor);
    return found == windows_.end() ? nullptr : found->second;
}

void Editors::hear(t_object *editor, EditorEvent event) {
    if (event == EditorEvent::open) {
        windows_[editor] = new EditorWindow(editor, session_);
        return;
    }
    EditorWindow *window = window_of(editor);
    if (!window)
        return;
    if (event != EditorEvent::close)
        return window->refresh(event);
    windows_.erase(editor);
    window->editor_is_gone();
}

void Editors::close_all() {
    while (!windows_.empty()) {
        t_object *editor = windows_.begin()->first;
        EditorWindow *window = windows_.begin()->second;
        windows_.erase(editor); // first, so that its end is nothing to hear of
        delete window;
        close_editor_window(editor);
    }
}
