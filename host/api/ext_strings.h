// Bounded text.
#pragma once

#include "max_types.h"

HOST_API_BEGIN

// Copies at most size - 1 bytes of `src` and ends them with a zero. `size` is what `dst` holds. Returns `dst`.
char *strncpy_zero(char *dst, const char *src, long size);

HOST_API_END
