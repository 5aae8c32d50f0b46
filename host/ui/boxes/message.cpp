// The message box: a typed text that is sent when something comes in.
#include <array>
#include <string>

#include "kernel/atomtext.h"
#include "kernel/console.h"
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

constexpr size_t longest_word = 32767; // bytes, of one that is put together when it is sent

void set_text(MessageParts &parts, std::string text) {
    parts.messages = parse_messages(text);
    change_text(parts.text, std::move(text));
}

// The same, unless the text is too long: then false.
bool set_text_that_fits(MessageParts &parts, std::string text) {
    if (text.size() > longest_text)
        return false;
    std::vector<TypedMessage> messages = parse_messages(text);
    size_t words = 0;
    for (const TypedMessage &message : messages)
        words += message.atoms.size();
    if (words > most_atoms)
        return false;
    parts.messages = std::move(messages);
    change_text(parts.text, std::move(text));
    return true;
}

std::string bare_text(const t_atom &atom) {
    return atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : print_atom(atom);
}

// Puts the argument in the place of the $1 to $9 that a word begins with; alone it stays what it is. False when the
// word gets too long.
bool fill_in(t_atom &word, const std::array<t_atom, 9> &arguments) {
    const char *typed = atom_getsym(&word)->s_name;
    const t_atom &argument = arguments[static_cast<size_t>(typed[1] - '1')];
    if (typed[2] == 0) {
        word = argument;
        return true;
    }
    const std::string text = bare_text(argument) + (typed + 2);
    if (text.size() > longest_word)
        return false;
    word = symbol_atom(gensym(text.c_str()));
    return true;
}

bool fill_in(TypedMessage &message, const std::array<t_atom, 9> &arguments) {
    for (size_t place : message.changeable)
        if (!fill_in(message.atoms[place], arguments))
            return false;
    if (!message.changeable_receiver)
        return true;
    t_atom receiver = symbol_atom(message.receiver);
    const bool fits = fill_in(receiver, arguments);
    message.receiver = gensym(bare_text(receiver).c_str());
    return fits;
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
        if (!fill_in(message, arguments))
            return end_event(&x->box.b_ob, "word too long: more than 32767 bytes");
        const Message made = message_of(message.atoms);
        if (message.receiver && made.arguments.size() > most_atoms)
            return end_event(&x->box.b_ob, too_long);
        if (message.receiver)
            deliver_to_name_or_tell(message.receiver, made);
        else if (!send_atoms(x->parts->outlet, message.atoms))
            return;
    }
}

void set_arguments(MessageParts &parts, std::span<const t_atom> atoms) {
    for (size_t i = 0; i < std::min(atoms.size(), parts.arguments.size()); ++i)
        parts.arguments[i] = atoms[i];
}

enum class Edit { none, made, refused };

// The words that change the text or the arguments without a sound.
Edit edit(MessageParts &parts, const Message &message, std::span<const t_atom> atoms) {
    const std::string_view selector = message.selector->s_name;
    const std::string typed = typed_atoms(message.arguments);
    const auto outcome = [](bool fits) { return fits ? Edit::made : Edit::refused; };
    const HeldRegion hold;
    const std::string gap = parts.text.shown.empty() ? "" : " ";
    if (current_inlet() == 1)
        return outcome(set_text_that_fits(parts, typed_atoms(atoms)));
    if (selector == "set")
        return outcome(set_text_that_fits(parts, typed));
    if (selector == "append")
        return outcome(set_text_that_fits(parts, parts.text.shown + gap + typed));
    if (selector == "prepend")
        return outcome(set_text_that_fits(parts, typed + gap + parts.text.shown));
    if (selector != "setargs")
        return Edit::none;
    set_arguments(parts, message.arguments);
    return Edit::made;
}

void message_anything(MessageBox *x, t_symbol *selector, long argc, t_atom *argv) {
    const Message message{selector, {argv, static_cast<size_t>(argc)}};
    std::vector<t_atom> atoms;
    append_message(atoms, message);
    const Edit edited = edit(*x->parts, message, atoms);
    if (edited != Edit::none)
        return edited == Edit::made ? show_again(&x->box) : refuse_long_text(x->box);
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
