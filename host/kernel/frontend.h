// The front end: what the program that embeds the host does on its behalf.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "ext_mess.h"

namespace maxhost {

enum class ConsoleLine { post, warn, error };

// Families of calls that can be traced; bits of FrontEnd::traced.
enum TraceFamily : unsigned {
    trace_view = 1,
    trace_queue = 2,
    trace_lock = 4,
    trace_file = 8,
    trace_dirty = 16,
    trace_notify = 32
};

// What became of a text editor.
enum class EditorEvent { open, text, file, title, visible, close };

// A record of functions, each of which may be left empty. The ones marked (any) are called on the thread on which the
// thing happens, the others on the main thread.
struct FrontEnd {
    // (any) A console line; `object` is the scripting name or class of whom it is against, or "-".
    std::function<void(ConsoleLine, const std::string &object, const std::string &text)> console;
    // (any) An outlet, counted from the left, sent a message.
    std::function<void(const std::string &object, long outlet, t_symbol *selector, std::span<const t_atom>)> output;
    // (any) An attribute was set by a message and its setter refused the value.
    std::function<void(const std::string &object, const std::string &attribute, t_max_err)> refused;
    // (any) A plug-in called a function of a traced family.
    std::function<void(const std::string &text)> trace;
    unsigned traced = 0;
    // (any) A plug-in misused the API. Without this function the reason goes to standard error and the program ends;
    // with it the call is refused.
    std::function<void(const char *function, const std::string &reason)> misuse;
    std::function<void(const std::string &text)> alert;
    // Answers the file that a person chooses, or an empty text when the dialog is cancelled.
    std::function<std::string(const std::string &prompt, const std::string &proposal)> save_dialog;
    std::function<void(t_object *editor, EditorEvent)> editor;
    // (any) A box wants to be painted again: what it shows has changed, or a button was hit.
    std::function<void(t_object *box)> repaint;
    // (any) Boxes or cords of a patcher have come or gone, or its mark of being changed has.
    std::function<void(t_object *patcher)> patcher_changed;
    // A box is about to go; it is not to be touched any more.
    std::function<void(t_object *box)> box_goes;
    // (any) There is work for the main thread: something was queued, or a clock was set. May come often.
    std::function<void()> work;
};

// The one in force. It is replaced only while no plug-in code runs.
FrontEnd &front_end();

} // namespace maxhost
