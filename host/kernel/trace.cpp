// Traces: printing the arguments.
#include "kernel/trace.h"

#include "ext_obex.h"
#include "ext_proto.h"
#include "kernel/atomtext.h"
#include "kernel/objects.h"

namespace maxhost {

std::string trace_argument(t_atom_long number) { return std::to_string(number); }
std::string trace_argument(int number) { return std::to_string(number); }
std::string trace_argument(double number) { return print_float(number); }

std::string trace_argument(const char *text) { return text ? trace_argument(gensym(text)) : "-"; }

std::string trace_argument(const t_symbol *symbol) {
    if (!symbol)
        return "-";
    t_atom atom;
    atom_setsym(&atom, const_cast<t_symbol *>(symbol));
    return print_atom(atom);
}

std::string trace_argument(const t_object *object) { return display_name(object); }

void emit_trace(const std::string &line) {
    if (front_end().trace)
        front_end().trace(line);
}

} // namespace maxhost
