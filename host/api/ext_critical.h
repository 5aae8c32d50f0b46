// The host's critical regions.
#pragma once

#ifndef _WIN32
#include <pthread.h>
#endif

#include "max_types.h"

HOST_API_BEGIN

#ifdef _WIN32
typedef struct _RTL_CRITICAL_SECTION *t_critical;
#else
typedef pthread_mutex_t *t_critical;
#endif

// Enters and leaves a region; 0 names the host's global one, which is recursive. Every enter is paired with an exit
// on the same thread. Keep it short: outlets and dialogs do not belong inside.
void critical_enter(t_critical x);
void critical_exit(t_critical x);

HOST_API_END
