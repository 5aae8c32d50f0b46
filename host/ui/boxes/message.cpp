// The message box: a typed text that is sent when something comes in.
#include <array>
#include <string>

#include "kernel/atomtext.h"
#include "kernel/receivers.h"
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct MessageParts {
    BoxText text;
    std::vector<TypedMessage> messages; // of the text
    std::array<t_atom, 9> arguments;    // what stands for $1 to $9
    void *outlet = nullptr;
};
using MessageBox = HostBox<MessageParts>;

t_class *message_class;

void set_text(MessageParts &parts, std::string text) {
    parts.messages = parse_messages(text);
    change_text(parts.text, std::move(text));
}

std::string bare_text(const t_atom &atom) {
    return atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : print_atom(atom);
}

// A word that begins with $1 to $9, with the argument in its place; alone it stays what it is.
t_atom filled_in(const char *word, const std::array<t_atom, 9> &arguments) {
    const t_atom &argument = arguments[static_cast<size_t>(word[1] - '1')];
    return word[2] == 0 ? argument : symbol_atom(gensym((bare_text(argument) + (word + 2)).c_str()));
}

void fill_in(TypedMessage &message, const std::array<t_atom, 9> &arguments) {
    for (size_t place : message.changeable)
        message.atoms[place] = filled_in(atom_getsym(&message.atoms[place])->s_name, arguments);
    if (message.changeable_receiver)
        message.receiver = gensym(bare_text(filled_in(message.receiver->s_name, arguments)).c_str());
}

void send_messages(MessageBox *x) {
    std::vector<TypedMessage> messages;
    std::array<t_atom, 9> arguments;
    {
        const HeldRegion hold;
        messages = x->parts->messages;
        arguments = x->parts->arguments;
    }
    for (TypedMessage &message : messages) {
        fill_in(message, arguments);
        if (message.receiver)
            deliver_to_name_or_tell(message.receiver, message_of(message.atoms));
        else if (!send_atoms(x->parts->outlet, message.atoms))
            return;
    }
}

void set_arguments(MessageParts &parts, std::span<const t_atom> atoms) {
    for (size_t i = 0; i < std::min(atoms.size(), parts.arguments.size()); ++i)
        parts.arguments[i] = atoms[i];
}

// The words that change the text or the arguments without a sound; false for any other.
bool edit(MessageParts &parts, const Message &message, std::span<const t_atom> atoms) {
    const std::string_view selector = message.selector->s_name;
    const std::string typed = typed_atoms(message.arguments);
    const HeldRegion hold;
    if (current_inlet() == 1)
        set_text(parts, typed_atoms(atoms));
    else if (selector == "set")
        set_text(parts, typed);
    else if (selector == "append")
        set_text(parts, parts.text.shown + (parts.text.shown.empty() ? "" : " ") + typed);
    else if (selector == "prepend")
        set_text(parts, typed + (parts.text.shown.empty() ? "" : " ") + parts.text.shown);
    else if (selector == "setargs")
        set_arguments(parts, message.arguments);
    else
        return false;
    return true;
}

void message_anything(MessageBox *x, t_symbol *selector, long argc, t_atom *argv) {
    const Message message{selector, {argv, static_cast<size_t>(argc)}};
    std::vector<t_atom> atoms;
    append_message(atoms, message);
    if (edit(*x->parts, message, atoms))
        return show_again(&x->box);
    if (selector != gensym("bang")) {
        const HeldRegion hold;
        set_arguments(*x->parts, atoms);
    }
    send_messages(x);
}

void message_content(MessageBox *x, std::vector<t_atom> *content) {
    const HeldRegion hold;
    content->push_back(symbol_atom(gensym(x->parts->text.shown.c_str())));
}

void message_save(MessageBox *x, t_dictionary *dictionary) {
    const HeldRegion hold;
    save_text(dictionary, x->parts->text);
}

void message_assist(MessageBox *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Arguments, bang to send", "Set the message"}, {"The message"});
}

void *message_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<MessageParts>(message_class, argc, argv);
    if (!x)
        return nullptr;
    x->parts->arguments.fill(long_atom(0));
    const std::span<const t_atom> typed = typed_arguments(argc, argv);
    x->parts->text = read_text(object_dictionaryarg(argc, argv));
    x->parts->messages = parse_messages(x->parts->text.shown);
    if (!typed.empty())
        set_text(*x->parts, typed_atoms(typed));
    set_inlet_count(&x->box.b_ob, 2);
    x->parts->outlet = outlet_new(x, nullptr);
    return finish_box(x, argc, argv);
}

} // namespace

void register_message() {
    message_class = new_box_class<MessageParts>("message", message_new, BoxKind::shown);
    add_method(message_class, message_anything, "anything");
    add_private(message_class, send_messages, "click");
    add_private(message_class, message_save, "jsave");
    add_private(message_class, message_content, "boxcontent");
    add_private(message_class, message_assist, "assist");
    class_register(CLASS_BOX, message_class);
}

} // namespace maxhost
