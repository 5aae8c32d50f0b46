// Open files.
#pragma once

#include "max_types.h"

HOST_API_BEGIN

typedef struct _filestruct *t_filehandle;

// Reads up to *count bytes; *count becomes what was read. Fewer than asked for is an error as well.
t_max_err sysfile_read(t_filehandle f, t_ptr_size *count, void *bufptr);

t_max_err sysfile_close(t_filehandle f);

HOST_API_END
