// What a plug-in includes first. Not in here, as in the SDK: ext_critical.h, jgraphics.h, jdataview.h.
#pragma once

#include "commonsyms.h"
#include "ext_dictionary.h"
#include "ext_maxtypes.h"
#include "ext_mess.h"
#include "ext_obex.h"
#include "ext_obex_util.h"
#include "ext_path.h"
#include "ext_post.h"
#include "ext_proto.h"
#include "ext_strings.h"
#include "ext_sysfile.h"
#include "ext_sysmem.h"
#include "jpatcher_api.h"
#include "max_types.h"

HOST_API_BEGIN

// A plug-in's entry function, called once when it is loaded; `r` names its resources. A plug-in for older hosts exports
// int main(void) instead.
C74_EXPORT void ext_main(void *r);

HOST_API_END
