// The windows of the host's text editors.
#pragma once

#include <unordered_map>

#include "embed/host.h"

class EditorWindow;
class Session;

class Editors {
  public:
    // The session outlives the editors.
    explicit Editors(Session &session) : session_(session) {}

    // The front end's part: what has become of an editor.
    void hear(t_object *editor, maxhost::EditorEvent event);

    EditorWindow *window_of(t_object *editor) const; // null when there is none
    bool are_open() const { return !windows_.empty(); }

    // Closes all of them without asking; unsaved texts are lost.
    void close_all();

  private:
    Session &session_;
    std::unordered_map<t_object *, EditorWindow *> windows_;
};
