// The transcript.
#include "transcript.h"

#include <cerrno>
#include <cstring>
#include <initializer_list>

using namespace maxhost;

namespace {

std::string floats(std::initializer_list<double> values) {
    std::string text;
    for (double value : values)
        text += " " + print_float(value);
    return text;
}

const char *name_of(ConsoleLine kind) {
    switch (kind) {
    case ConsoleLine::warn:
        return "warn";
    case ConsoleLine::error:
        return "error";
    default:
        return "post";
    }
}

// An integer out of an outlet stands alone; any other message begins with its selector.
std::string output_line(const std::string &object, long outlet, t_symbol *selector, std::span<const t_atom> arguments) {
    const bool lone_integer =
        selector == gensym("int") && arguments.size() == 1 && atom_gettype(&arguments[0]) == A_LONG;
    t_atom first;
    atom_setsym(&first, selector);
    std::string text = print_text(object) + ":" + std::to_string(outlet);
    if (!lone_integer)
        text += " " + print_atom(first);
    for (const t_atom &argument : arguments)
        text += " " + print_atom(argument);
    return text;
}

std::string editor_text(const EditorState &state, EditorEvent event) {
    switch (event) {
    case EditorEvent::text:
        return "settext " + std::to_string(state.text.size()) + " bytes";
    case EditorEvent::file:
        return "filename " + print_quoted(state.file);
    case EditorEvent::visible:
        return std::string("visible ") + (state.visible ? "1" : "0");
    case EditorEvent::close:
        return "close";
    default:
        return "open " + print_quoted(state.title);
    }
}

} // namespace

void Transcript::line(const std::string &text) {
    std::lock_guard lock(mutex_);
    const bool is_written = std::fprintf(out_, "%s\n", text.c_str()) >= 0 && std::fflush(out_) == 0;
    if (!is_written && fault_ == 0)
        fault_ = errno;
}

std::string Transcript::fault() {
    std::lock_guard lock(mutex_);
    return fault_ == 0 ? "" : std::strerror(fault_);
}

FrontEnd Transcript::front_end(unsigned traced) {
    FrontEnd front;
    front.console = [this](ConsoleLine kind, const std::string &object, const std::string &text) {
        line(std::string(name_of(kind)) + ": " + print_text(object) + ": " + print_text(text));
    };
    front.output = [this](const std::string &object, long outlet, t_symbol *selector, std::span<const t_atom> atoms) {
        line(output_line(object, outlet, selector, atoms));
    };
    front.refused = [this](const std::string &object, const std::string &attribute, t_max_err result) {
        line(print_text(object) + "." + attribute + " refused " + std::to_string(result));
    };
    front.trace = [this](const std::string &text) { line("trace: " + text); };
    front.traced = traced;
    front.alert = [this](const std::string &text) { line("alert: " + print_text(text)); };
    front.save_dialog = [this](const std::string &prompt, const std::string &proposal) {
        return answer_dialog(prompt, proposal);
    };
    front.editor = [this](t_object *editor, EditorEvent event) {
        if (event != EditorEvent::title) // shown when the window opens
            line("editor: " + editor_text(editor_state(editor), event));
    };
    return front;
}

std::string Transcript::answer_dialog(const std::string &prompt, const std::string &proposal) {
    std::string answer;
    if (!answers_.empty()) {
        answer = answers_.front();
        answers_.pop_front();
    }
    line("dialog: " + print_quoted(prompt) + " " + print_quoted(proposal) + " -> " +
         (answer.empty() ? "cancel" : print_text(answer)));
    return answer;
}

std::string paint_line(long row, const DrawRecord &record) {
    const auto &[x, y, width, height] = record.rect;
    const auto &[red, green, blue, alpha] = record.color;
    const std::string start = "paint: " + std::to_string(row);
    switch (record.kind) {
    case DrawRecord::Kind::fill:
        return start + " fill" + floats({x, y, width, height, red, green, blue, alpha});
    case DrawRecord::Kind::text:
        return start + " text" + floats({x, y}) + " " + print_quoted(record.text) + floats({red, green, blue, alpha});
    default:
        return start + " image" + floats({x, y, width, height});
    }
}

std::string view_line(const ViewState &state) {
    return "view: rows " + std::to_string(state.rows) + ", selected " + std::to_string(state.selected) + ", height " +
           std::to_string(state.row_height) + ", column " + std::to_string(state.column_width) + ", font " +
           print_quoted(state.font_name->s_name) + " " + print_float(state.font_size) + ", border " +
           std::to_string(state.border);
}
