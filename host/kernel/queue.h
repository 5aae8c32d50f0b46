// The low-priority queue of the main thread: deferred calls and queue elements, first in, first out.
#pragma once

#include <span>

#include "ext_proto.h"
#include "kernel/export.h"

namespace maxhost {

// Runs what is queued, and what that queues, until nothing is left. When no end is in sight, because something queues
// itself for ever, the console says so and the rest stays queued. Main thread.
MAXHOST_EMBED void drain_queue();

// Runs what is queued, and what that queues, for so many milliseconds, or one task that takes longer; false when
// something is left. It never says that no end is in sight: who calls it decides when that is so. Main thread.
MAXHOST_EMBED bool drain_queue_for(double milliseconds);

// Says on the console what drain_queue says when no end is in sight, if drain_queue_for has run 10,000,000 tasks since
// it left nothing; once until it leaves nothing again. Main thread.
MAXHOST_EMBED void tell_of_endless_queue();

// Runs what is queued now and leaves what that queues; false when nothing was queued. Main thread.
MAXHOST_EMBED bool run_queue_once();

// Queues a call as defer_low does, on behalf of the host itself: it is not traced. When memory runs out
// (std::bad_alloc) nothing is queued. Any thread.
void defer(void *object, method function, t_symbol *symbol, std::span<const t_atom> atoms);

// Takes back the deferred calls for an object.
void forget_deferred(const void *object);

} // namespace maxhost
