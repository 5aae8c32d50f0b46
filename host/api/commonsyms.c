// The table of common symbols, for each plug-in to compile in.
#include "commonsyms.h"

#include "ext_proto.h"

t_common_symbols_table *_common_symbols;

void common_symbols_init(void) {
    static t_common_symbols_table table;
    table.s_attr_modified = gensym("attr_modified");
    table.s_getname = gensym("getname");
    _common_symbols = &table;
}
