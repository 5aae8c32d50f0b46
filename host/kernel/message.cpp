// Messages.
#include "kernel/message.h"

#include "ext_obex.h"
#include "ext_proto.h"

namespace maxhost {

Message message_of(std::span<const t_atom> atoms) {
    if (atoms.empty())
        return {gensym("bang"), {}};
    if (atom_gettype(&atoms[0]) == A_SYM)
        return {atom_getsym(&atoms[0]), atoms.subspan(1)};
    if (atoms.size() > 1)
        return {gensym("list"), atoms};
    return {gensym(atom_gettype(&atoms[0]) == A_FLOAT ? "float" : "int"), atoms};
}

void append_message(std::vector<t_atom> &atoms, const Message &message) {
    const t_symbol *selector = message.selector;
    const bool is_number = selector == gensym("int") || selector == gensym("float");
    const bool only_tells_the_kind = selector == gensym("list") || (is_number && !message.arguments.empty()) ||
                                     (selector == gensym("symbol") && message.arguments.size() == 1);
    if (!only_tells_the_kind)
        atom_setsym(&atoms.emplace_back(), message.selector);
    atoms.insert(atoms.end(), message.arguments.begin(), message.arguments.end());
}

} // namespace maxhost
