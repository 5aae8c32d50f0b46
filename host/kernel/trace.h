// Traces: the calls that plug-ins make, as lines for the front end.
#pragma once

#include <string>

#include "ext_mess.h"
#include "kernel/door.h"
#include "kernel/frontend.h"

namespace maxhost {

// An argument as a trace prints it: numbers and texts as atoms print, an object as its name or class, null as "-".
std::string trace_argument(t_atom_long number);
std::string trace_argument(int number);
std::string trace_argument(double number);
std::string trace_argument(const char *text);
std::string trace_argument(const t_symbol *symbol);
std::string trace_argument(const t_object *object);

void emit_trace(const std::string &line);

inline bool is_traced(TraceFamily family) { return (front_end().traced & family) != 0; }

// The line "CALL ARGS", when the family is traced.
template <typename... Arguments> void trace(TraceFamily family, const char *call, Arguments... arguments) {
    if (is_traced(family))
        guarded(call, [&] { emit_trace((std::string(call) + ... + (" " + trace_argument(arguments)))); });
}

// The line "CALL ARGS -> RESULT".
template <typename... Arguments>
void trace_result(TraceFamily family, t_atom_long result, const char *call, Arguments... arguments) {
    if (is_traced(family))
        guarded(call, [&] {
            emit_trace((std::string(call) + ... + (" " + trace_argument(arguments))) + " -> " + std::to_string(result));
        });
}

// Traces a call of the family "file" with its result, and passes the result on.
template <typename... Arguments> short traced_result(short result, const char *call, Arguments... arguments) {
    trace_result(trace_file, result, call, arguments...);
    return result;
}

} // namespace maxhost
