// Path ids and the search path. All results are 0 or an error code; path ids are small numbers that name folders.
#pragma once

#include "ext_sysfile.h"
#include "max_types.h"

HOST_API_BEGIN

#define MAX_PATH_CHARS 2048
#define MAX_FILENAME_CHARS 512

#define PATH_STYLE_SLASH 3
#define PATH_TYPE_BOOT 3
#define PATH_READ_PERM 1
#define PATH_WRITE_PERM 2

// Finds a regular file in the search path, or by a full path; `name` has room for MAX_PATH_CHARS and becomes the bare
// file name when it was more than that. A list of `numtypes` types limits what is found; null and 0: any.
short locatefile_extended(char *name, short *outvol, t_fourcc *outtype, const t_fourcc *filetypelist, short numtypes);

// The full path of something in a folder; `name` holds MAX_PATH_CHARS. …topathname: only of something that exists;
// …topotentialname: whether it exists or not (`check` 0). On an error, an empty `file` among them, `name` stays as it
// was.
short path_topathname(const short path, const char *file, char *name);
short path_topotentialname(const short path, const char *file, char *name, short check);

// Rewrites a path into slash style from the root of the boot volume, the one form that this host has. A name without
// folders is placed in the default folder. `dst` holds MAX_PATH_CHARS.
short path_nameconform(const char *src, char *dst, long style, long type);

// Splits a full path; the folder must exist, the file need not. `filename` holds MAX_FILENAME_CHARS.
short path_frompathname(const char *name, short *path, char *filename);

// Opens a regular file; creates a new one and opens it for writing (a file that is there is an error).
short path_opensysfile(const char *name, const short path, t_filehandle *ref, short perm);
short path_createsysfile(const char *name, short path, t_fourcc type, t_filehandle *ref);

// The user's folder for temporary files; a new folder in a folder (an error when it exists); the id of a folder in a
// folder.
short path_tempfolder(void);
short path_createfolder(const short path, const char *name, short *newpath);
short path_getpath(short path, const char *name, short *outpath);

#ifdef __APPLE__
// The id of the folder that a reference of the system leads to. This host has it not: it runs on Linux.
struct FSRef;
short path_fromfsref(struct FSRef *ref);
#endif

// The save dialog: its prompt, for the next time only, and the dialog. `name` is the proposal, then the choice
// (MAX_FILENAME_CHARS). 0 when a file was chosen. Main thread.
void saveas_promptset(const char *s);
short saveasdialog_extended(char *name, short *vol, t_fourcc *type, t_fourcc *typelist, short numtypes);

HOST_API_END
