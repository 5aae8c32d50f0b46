// Symbols that hosts and plug-ins name often, interned once.
#pragma once

#include "ext_mess.h"

HOST_API_BEGIN

typedef struct _common_symbols_table {
    t_symbol *s_attr_modified;
    t_symbol *s_fontname;
    t_symbol *s_fontsize;
    t_symbol *s_get;
    t_symbol *s_getname;
    t_symbol *s_gettype;
    t_symbol *s_nothing; // the empty symbol
    t_symbol *s_set;
    t_symbol *s_setmethod;
} t_common_symbols_table;

extern t_common_symbols_table *_common_symbols;

// Fills the table; to be called before any of the names below is used.
void common_symbols_init(void);

#define _sym_attr_modified (_common_symbols->s_attr_modified)
#define _sym_fontname (_common_symbols->s_fontname)
#define _sym_fontsize (_common_symbols->s_fontsize)
#define _sym_get (_common_symbols->s_get)
#define _sym_getname (_common_symbols->s_getname)
#define _sym_gettype (_common_symbols->s_gettype)
#define _sym_nothing (_common_symbols->s_nothing)
#define _sym_set (_common_symbols->s_set)
#define _sym_setmethod (_common_symbols->s_setmethod)

HOST_API_END
