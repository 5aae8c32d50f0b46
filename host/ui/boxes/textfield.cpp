// The text field, in which a person enters a text: it goes out behind the word "text".
#include <algorithm>
#include <string>

#include "ext_obex_util.h"
#include "kernel/atomtext.h"
#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

struct TextFieldParts {
    BoxText text;
    long one_symbol = 0; // "outputmode": the text goes out as one symbol, not as words
    void *outlet = nullptr;
};
using TextField = HostBox<TextFieldParts>;

t_class *textfield_class;

// The text of atoms, as it is read: without the quotes that a message would need.
std::string shown_text(std::span<const t_atom> atoms) {
    std::string text;
    for (const t_atom &atom : atoms)
        text.append(text.empty() ? "" : " ")
            .append(atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : print_atom(atom));
    return text;
}

void textfield_bang(TextField *x) {
    std::vector<t_atom> atoms{symbol_atom(gensym("text"))};
    {
        const HeldRegion hold;
        if (x->parts->one_symbol)
            atoms.push_back(symbol_atom(gensym(x->parts->text.shown.c_str())));
        else
            for (const t_atom &atom : parse_atoms(x->parts->text.shown))
                atoms.push_back(atom);
    }
    send_atoms(x->parts->outlet, atoms);
}

// Whether a text is no longer than a message. Looking for blanks is quick, and mostly enough.
bool fits_message(const std::string &text) {
    const auto is_blank = [](unsigned char c) { return c <= ' '; };
    const auto blanks = static_cast<size_t>(std::count_if(text.begin(), text.end(), is_blank));
    return text.size() <= longest_text && (blanks < most_atoms || parse_atoms(text).size() <= most_atoms);
}

// Puts atoms in the place of the text, or after it; false when it would be too long.
bool enter_text(TextField *x, std::span<const t_atom> atoms, bool after) {
    bool fits;
    {
        const HeldRegion hold;
        std::string text = shown_text(atoms);
        if (after && !x->parts->text.shown.empty())
            text.insert(0, x->parts->text.shown + " ");
        fits = fits_message(text);
        if (fits)
            change_text(x->parts->text, std::move(text));
    }
    if (fits)
        show_again(&x->box);
    else
        refuse_long_text(x->box);
    return fits;
}

void textfield_set(TextField *x, t_symbol *, long argc, t_atom *argv) {
    enter_text(x, {argv, static_cast<size_t>(argc)}, false);
}

void textfield_append(TextField *x, t_symbol *, long argc, t_atom *argv) {
    enter_text(x, {argv, static_cast<size_t>(argc)}, true);
}

void textfield_clear(TextField *x) { textfield_set(x, nullptr, 0, nullptr); }

void textfield_content(TextField *x, std::vector<t_atom> *content) {
    const HeldRegion hold;
    content->push_back(symbol_atom(gensym(x->parts->text.shown.c_str())));
}

// A person has entered a text.
void textfield_entered(TextField *x, long argc, t_atom *argv) {
    if (enter_text(x, {argv, static_cast<size_t>(argc)}, false))
        textfield_bang(x);
}

// Any other message is a text that is entered.
void textfield_anything(TextField *x, t_symbol *selector, long argc, t_atom *argv) {
    std::vector<t_atom> atoms;
    append_message(atoms, {selector, {argv, static_cast<size_t>(argc)}});
    if (enter_text(x, atoms, false))
        textfield_bang(x);
}

void textfield_save(TextField *x, t_dictionary *dictionary) {
    const HeldRegion hold;
    save_text(dictionary, x->parts->text);
}

void textfield_assist(TextField *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"Text to enter, bang to send"}, {"The word text and what was entered"});
}

t_max_err get_outputmode(TextField *x, void *, long *ac, t_atom **av) {
    char allocated;
    const t_max_err result = atom_alloc(ac, av, &allocated);
    const HeldRegion hold;
    return result ? result : atom_setlong(*av, x->parts->one_symbol);
}

t_max_err set_outputmode(TextField *x, void *, long ac, t_atom *av) {
    if (ac < 1)
        return MAX_ERR_GENERIC;
    const HeldRegion hold;
    x->parts->one_symbol = atom_getlong(av) != 0;
    return MAX_ERR_NONE;
}

void *textfield_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<TextFieldParts>(textfield_class, argc, argv);
    if (!x)
        return nullptr;
    x->parts->text = read_text(object_dictionaryarg(argc, argv));
    x->parts->outlet = outlet_new(x, nullptr);
    return finish_box(x, argc, argv);
}

} // namespace

void register_textfield() {
    textfield_class = new_box_class<TextFieldParts>("textfield", textfield_new, BoxKind::shown);
    class_addmethod(textfield_class, reinterpret_cast<method>(textfield_bang), "bang", 0);
    add_method(textfield_class, textfield_set, "set");
    add_method(textfield_class, textfield_append, "append");
    class_addmethod(textfield_class, reinterpret_cast<method>(textfield_clear), "clear", 0);
    add_method(textfield_class, textfield_anything, "anything");
    add_private(textfield_class, textfield_save, "jsave");
    add_private(textfield_class, textfield_assist, "assist");
    add_private(textfield_class, textfield_content, "boxcontent");
    add_private(textfield_class, textfield_entered, "entered");
    class_addattr(textfield_class, attr_offset_new("outputmode", gensym("long"), ATTR_FLAGS_NONE,
                                                   reinterpret_cast<method>(get_outputmode),
                                                   reinterpret_cast<method>(set_outputmode), 0));
    class_attr_addattr_parse(textfield_class, "outputmode", "save", gensym("long"), 0, "1");
    class_register(CLASS_BOX, textfield_class);
    alias(const_cast<char *>("textedit"));
}

} // namespace maxhost
