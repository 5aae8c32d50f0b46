// The host's allocator. Any thread.
#pragma once

#include "max_types.h"

HOST_API_BEGIN

// A block of `size` bytes, not cleared (…clear: zeroed); null when memory runs out. Freed with sysmem_freeptr.
t_ptr sysmem_newptr(t_ptr_size size);
t_ptr sysmem_newptrclear(t_ptr_size size);

// The size that the block was asked for, to the byte.
t_ptr_size sysmem_ptrsize(void *ptr);

// Releases a block of this allocator; null is accepted.
void sysmem_freeptr(void *ptr);

HOST_API_END
