// The text editor, class "jed": a window's text, file and title, and the talk with its owner.
#pragma once

#include <string>

#include "kernel/classes.h"

namespace maxhost {

struct Editor : t_object {
    t_object *owner = nullptr; // hears "edsave" and "edclose"
    std::string text;          // UTF-8
    std::string file;
    short folder = 0; // path id
    t_symbol *title = nullptr;
    char visible = 0;

    static Class *host_class();
    static constexpr const char *kind_name = "text editor";
};

// Makes the class known, so that plug-ins can make editors.
void register_editor();

// A person saves the text: "edsave" goes to the owner. True when the owner has taken it, and answers more than 0.
bool save_editor(Editor &editor);

// A person closes the window: "edclose" goes to the owner, then the editor is freed.
void close_editor(Editor *editor);

} // namespace maxhost
