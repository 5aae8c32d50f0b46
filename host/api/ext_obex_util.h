// Attributes of attributes.
#pragma once

#include "ext_obex.h"

HOST_API_BEGIN

// Gives the attribute `attrname` the attribute `attrname2`; `parsestr` is split into atoms like a typed message.
t_max_err class_attr_addattr_parse(t_class *c, const char *attrname, const char *attrname2, t_symbol *type, long flags,
                                   const char *parsestr);

HOST_API_END
