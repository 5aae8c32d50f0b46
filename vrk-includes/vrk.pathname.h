// Paths: from the host's form to the native one, files in the search path, and writing a document to a native path.
#pragma once

#include <libxml/tree.h>

#include "ext.h"

// All of them: main thread.

// The native form of a host path name: slash-separated, from the root of the boot volume, as the operating system's
// file functions open it. The empty symbol when the host cannot convert it. `owner` is not used.
t_symbol *vrk_path_to_OSX_path(t_object *owner, t_symbol *pathname);

// The full host path name of a file, given by name (looked up in the search path) or by full path; null when there is
// no such file, and when memory runs out: who makes a file that is missing has to look again. `filename` is not
// changed.
t_symbol *vrk_file_locate(t_symbol *filename);

// Tells an open host text editor which file it shows: its "filename" and its window's title. Nothing happens without
// an editor or a path name, or when the host cannot split the path name.
void vrk_set_editorfile_from_pathname(t_object *editor, t_symbol *pathname);

// The path id of the folder `subfolder`, made when it is missing, in the plug-in's own folder among the user's
// temporary items; 0 when it can neither be made nor had.
short vrk_path_tempfolder(const char *subfolder);

// Writes a document as XML to a native path, replacing what the file holds, as vrk_replace_file does: whole or not at
// all. In the document's own encoding, or without one in ASCII with character references; no indentation is added. The
// name is taken as it stands: "%41" in it is three characters, where xmlSaveFile would write to another file. The
// number of bytes written, or minus the error number (errno.h) of what failed: EINVAL without a path or a document,
// ENOTSUP when libxml2 does not know the encoding or nobody could read again what it writes in it (UTF-7), ENOMEM, or
// what kept the file from being written.
int vrk_save_document(t_symbol *native_path, xmlDocPtr doc);
