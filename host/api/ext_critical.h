// The host's critical regions.
#pragma once

#include <pthread.h>

#include "max_types.h"

HOST_API_BEGIN

typedef pthread_mutex_t *t_critical;

// Enters and leaves a region; 0 names the host's global one, which is recursive. Every enter is paired with an exit
// on the same thread. Keep it short: outlets and dialogs do not belong inside.
void critical_enter(t_critical x);
void critical_exit(t_critical x);

HOST_API_END
