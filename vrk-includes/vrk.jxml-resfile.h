// Resource files: numbered resources by type, and menus, in the document of a holder.
#pragma once

#include "vrk.jxmlfile.h"

// All of them: main thread. A resource is the element TYPE with the attribute "number" under the root and the group
// element that the holder names. Results: 0, or -1 with an error against the holder's owner: "no xml file loaded", "no
// root tag defined", "no xml path defined" (for the menus also when the second word of "xmlpath" is missing, which
// they only name in messages), or what the operation could not do. The node access may post lines of its own first.

// The number of resources of a type, whatever their numbers; the type "types" counts the group elements. On failure
// *count is left alone.
long jxmlresfile_count_resource(t_jxmlfile *holder, t_symbol *type, long *count, char verbose);

// Reads a resource as jxmlfile_get does, with its `value_kind`, *count and *result. With `verbose` 0 a resource that
// cannot be had is no failure: the result is 0, and *count and *result are as they were.
long jxmlresfile_get_resource(t_jxmlfile *holder, t_symbol *type, long number, t_symbol *value_kind, short *count,
                              t_atom **result, char verbose);

// Writes a resource, which is made when it is missing: a symbol's text, or with `as_cdata` the bytes of an object
// atom's block. Such a block passes to this function in every case and is released with sysmem_freeptr, once. With
// `verbose` 0 a failure to write is not reported and the result is 0.
long jxmlresfile_set_resource(t_jxmlfile *holder, t_symbol *type, long number, t_atom *value, char as_cdata,
                              char verbose);

// The title of a menu, read as jxmlfile_get does.
long jxmlresfile_get_menutitle(t_jxmlfile *holder, long menu, t_symbol *value_kind, short *count, t_atom **result,
                               char verbose);

// The number of items of a menu, separators included. On failure *count is left alone.
long jxmlresfile_count_menuitems(t_jxmlfile *holder, long menu, long *count, char verbose);

// The label of a menu item as one symbol in (*result)[0]; `with_command` makes it LABEL/COMMAND when the item has a
// command and is no separator ("-"). Cut to 1023 bytes. *count is the room in *result, at least 1, and becomes 1.
long jxmlresfile_get_menuitem(t_jxmlfile *holder, long menu, long item, t_symbol *value_kind, short *count,
                              t_atom **result, char with_command, char verbose);

// Loads the resource file of that name and gives its full host path name, or, when the search path has none, makes and
// writes an empty one and gives null; a file that is there although the lookup has failed is reported and left alone.
// Whether it could be read is told by the holder's `loaded`.
t_symbol *jxmlresfile_read(t_jxmlfile *holder, t_symbol *filename);

// Shows the document in the text editor, or an alert when there is none.
void jxmlresfile_open(t_jxmlfile *holder);
