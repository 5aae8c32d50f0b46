// Symbols that are named often, interned once.
#pragma once

#include "ext_mess.h"

// The table is each plug-in's own, not the host's: commonsyms.c is compiled into the plug-in, as the SDK has it.
#ifdef __cplusplus
extern "C" {
#endif

typedef struct _common_symbols_table {
    t_symbol *s_attr_modified;
    t_symbol *s_getname;
} t_common_symbols_table;

extern t_common_symbols_table *_common_symbols;

// Fills the table; to be called before any of the names below is used.
void common_symbols_init(void);

#define _sym_attr_modified (_common_symbols->s_attr_modified)
#define _sym_getname (_common_symbols->s_getname)

#ifdef __cplusplus
}
#endif
