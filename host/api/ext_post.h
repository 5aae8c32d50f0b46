// Console lines. printf-style; a line that cannot be formatted or is too long is cut, never fatal. Any thread.
#pragma once

#include "ext_mess.h"

HOST_API_BEGIN

// A line tied to the object `x`, plain, flagged as a warning or as an error; `x` may be null.
void object_post(t_object *x, const char *s, ...) __attribute__((format(printf, 2, 3)));
void object_warn(t_object *x, const char *s, ...) __attribute__((format(printf, 2, 3)));
void object_error(t_object *x, const char *s, ...) __attribute__((format(printf, 2, 3)));

// An alert box.
void ouchstring(const char *s, ...) __attribute__((format(printf, 1, 2)));

HOST_API_END
