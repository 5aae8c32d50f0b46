// The holder of one XML document: its file, the path language, access to nodes and attributes, editor and printing.
#pragma once

#include "vrk.owners.h" // first: libxml2's headers come before the host's, whose macros could bite

#include "ext.h"
#include "vrk.jxml-index.h"

// One document held on behalf of a host object. Made by jxmlfile_new only.
//
// The holder owns `doc`, `editor` and the two queue elements. Both paths are native paths (vrk_path_to_OSX_path), so
// that equal paths are equal symbols. `loaded` is 1 when `doc` is the document of `file_path`; it can be 1 without a
// document (jxmlfile_filename), and then as little can be reached as with 0.
typedef struct _jxmlfile {
    t_object *owner;      // errors, warnings and posts are tied to it
    t_object *editor;     // the open text editor, or null
    xmlDocPtr doc;        // null when there is none
    t_symbol *file_path;  // read from, or last written to; null at first
    t_symbol *write_path; // where the next deferred write goes; null at first
    t_symbol *root;       // name of the root element, "resourcefile" at first
    t_symbol *xmlpath[2]; // group element and resource type, "resource" and "long" at first
    char loaded;          // 0 or 1
    void *read_qelem;     // runs jxmlfile_doread
    void *write_qelem;    // runs jxmlfile_dowrite
    jxml_index *index;    // answers plain paths; null at first
    long texts_cut;       // so many texts have lost letters when they were trimmed by jxmlfile_get
} t_jxmlfile;

// Room for an XPath expression with its terminating zero.
constexpr long JXMLFILE_EXPRESSION_SIZE = 2048;

// Everything below: main thread. The setting of a queue element (jxmlfile_bang, jxmlfile_writeagain) may come from any,
// and so may the accessors of "root" and "xmlpath".

// ---- the holder

// A holder without a document, to be released with jxmlfile_free; null when memory runs out.
t_jxmlfile *jxmlfile_new(t_object *owner);

// Releases the holder with all that it owns, its own memory included; null is accepted.
void jxmlfile_free(t_jxmlfile *holder);

// Accessors behind the owner's attributes "root" and "xmlpath" (`attr` is not used). A getter fills the caller's atoms
// or lets the host allocate them (atom_alloc), to be freed by the caller; a setter takes one symbol, or up to two and
// leaves the words alone that it was not given. 0, or -2: no holder, or nothing that can be set (the xmlpath setter
// accepts atoms that are no symbols by ignoring them and what follows).
t_max_err jxmlfile_getroot(t_jxmlfile *holder, void *attr, long *argc, t_atom **argv);
t_max_err jxmlfile_root(t_jxmlfile *holder, void *attr, long argc, t_atom *argv);
t_max_err jxmlfile_getxmlpath(t_jxmlfile *holder, void *attr, long *argc, t_atom **argv);
t_max_err jxmlfile_xmlpath(t_jxmlfile *holder, void *attr, long argc, t_atom *argv);

// ---- its file
//
// A file that does not parse, or whose entity references would expand beyond all bounds, is refused with a console
// line and leaves the holder without a document and `loaded` 0. External entities are never read.

// Looks a file up in the search path and makes it the current one, without reading it: `loaded` becomes 0, or 1 when
// it was the current one before. A name that is not found changes nothing and reports it.
void jxmlfile_filename(t_jxmlfile *holder, t_symbol *name);

// jxmlfile_filename, then the parse from the low-priority queue. The queue runs even when nothing was found, so that
// the current file is then read again.
void jxmlfile_read(t_jxmlfile *holder, t_symbol *name);

// Parses the current file now, in place of the document that was held; nothing without a current file.
void jxmlfile_doread(t_jxmlfile *holder);

// Reads a file at once. 1 when it is the current one and `loaded` (nothing is read, also when the file is gone or there
// is no document) or has been parsed, whether that went
// well or not (see `loaded`); 0 when it cannot be opened or found or does not begin with the five bytes "<?xml": the
// holder is then as before.
short jxmlfile_load(t_jxmlfile *holder, const char *filename, short path_id);

// A fresh document of its own: the holder's root element with an empty group element in it. Null when memory runs out.
xml_doc jxmlfile_make_document(const t_jxmlfile *holder);

// A fresh document, the root element with an empty group element in it, written at once to `pathname`. `loaded` is
// left as it was. A name that no element can have is refused with a console line, and nothing changes.
void jxmlfile_newdoc(t_jxmlfile *holder, t_symbol *pathname);

// Deferred writes: to `pathname`, or to where the last one went. jxmlfile_dowrite writes now; a failed write is not
// reported, and the path becomes the current file either way. A path name that the host cannot convert is reported
// ("can't find %s"), and then nothing is written, as in jxmlfile_newdoc.
void jxmlfile_write(t_jxmlfile *holder, t_symbol *pathname);
void jxmlfile_writeagain(t_jxmlfile *holder);
void jxmlfile_dowrite(t_jxmlfile *holder);

// ---- the path language
//
// A path is a list of atoms: a symbol is an element step, an integer a position, "attr" NAME VALUE a filter; anything
// else is skipped. Nothing is quoted: a symbol as VALUE is compared with a child element of that name (XPath 1.0)
// unless it brings its own quote characters.

// Appends the XPath expression of a path to *buffer, which holds JXMLFILE_EXPRESSION_SIZE bytes. The path is consumed:
// *argc becomes 0 and *argv points after it. An incomplete "attr" at the end leaves the expression as built so far.
// An expression that does not fit is cut and ends with "[", so that it can never be evaluated.
void jxmlfile_to_xmlXPath(long *argc, t_atom **argv, char **buffer);

// ---- nodes
//
// Results: 0; -1 nothing loaded, no node, a node of the wrong kind, something that cannot be stored, or a failure of
// libxml2; -2 a bad argument or missing data; -4 no XPath context, or no room for a result. Errors are always
// reported; what is merely not found is reported as a warning when `verbose` is not 0. The document is changed in
// memory only. Where a path is taken by reference it is consumed, as above. An element that stands in the declaration
// of an entity (following::NAME can select it) is read, but to change it is refused with a console line and -1: the
// declaration would be saved as it was.

// What the path selects, in document order, to be freed by the caller with xmlXPathFreeObject; anything but a node set
// in it means that the expression selects no nodes. Selecting nothing is a success. Nodes that *out holds may be
// namespace nodes, which die with it. Without success *out is left alone, or null.
long jxmlfile_get_nodeset(t_jxmlfile *holder, long *argc, t_atom **argv, xmlXPathObjectPtr *out);

// The first node that the path selects, which must be an element.
long jxmlfile_get_node(t_jxmlfile *holder, long *argc, t_atom **argv, xmlNodePtr *out, char verbose);

// The node at the path: an element, which is made step by step where it is missing, or an attribute, a text, a section,
// a comment or an instruction that is there. Elements made before a failing step stay. A step's filter becomes an
// attribute of what is made, and a position becomes part of its name, so that no file that holds it can be read again.
// *io is null going in. It is still null, with the result 0, when the first step is not the
// document's root element: a second root is never made.
long jxmlfile_set_node(t_jxmlfile *holder, long *argc, t_atom **argv, xmlNodePtr *io, char verbose);

// The text of an element as jxmlfile_get gives it, where it stands: the document's, until that is changed. Null when
// the element holds anything but one text without blanks around it.
const char *jxmlfile_plain_text(const xmlNode *element);

// The content of the element at the path, into the array *result of *count atoms; *count becomes what was written.
// Text is trimmed (bytes that are not above 32 as signed characters go from both ends, letters outside of ASCII among
// them, which `texts_cut` counts) and becomes one atom by `value_kind`: "int", "float", anything else a symbol; an
// element without children is an empty text. A CDATA section is hexadecimal bytes: with room for one atom, one object
// atom with a block that the caller frees with sysmem_freeptr; with more room, one integer from -128 to 127 for each
// byte that finds a place.
long jxmlfile_get(t_jxmlfile *holder, long argc, t_atom *argv, t_symbol *value_kind, short *count, t_atom **result,
                  char verbose);

// PATH NAME: the attribute's value as one atom by `value_kind`, not trimmed, into (*result)[0]. `count` is not used.
long jxmlfile_getattr(t_jxmlfile *holder, long argc, t_atom *argv, t_symbol *value_kind, short *count, t_atom **result,
                      char verbose);

// PATH "text" DATA…: the atoms, separated by blanks, become the node's only content; the block of an object atom is
// taken as text up to its first zero and stays the caller's.
// PATH "cdata" DATA…: symbols are taken as their bytes, numbers as one byte each (zeros are left out), as upper-case
// hexadecimal in a CDATA section in place of the element's first child; the block of an object atom, with all its
// bytes, replaces what came before it. Such blocks pass to the holder in every case, also when it refuses the call:
// they are released with sysmem_freeptr, once, and are not to be touched afterwards.
// Only an element takes bytes. Neither word: -2. Text that XML cannot hold, and more than libxml2 would read again, is
// refused with a console line and -1 before anything is changed.
long jxmlfile_set(t_jxmlfile *holder, long argc, t_atom *argv, char verbose);

// PATH NAME VALUE: sets an attribute of an element that exists. Refuses as jxmlfile_set does, and names that are none.
long jxmlfile_setattr(t_jxmlfile *holder, long argc, t_atom *argv, char verbose);

// Takes the element at the path away with all that is in it; PATH NAME: an attribute, which need not be there.
long jxmlfile_delete(t_jxmlfile *holder, long argc, t_atom *argv, char verbose);
long jxmlfile_deleteattr(t_jxmlfile *holder, long argc, t_atom *argv, char verbose);

// How many nodes the path selects. …count cannot tell of more than 32767: -1, and *count is left alone, without a word.
long jxmlfile_count_all(t_jxmlfile *holder, long argc, t_atom *argv, long *count);
long jxmlfile_count(t_jxmlfile *holder, long argc, t_atom *argv, short *count, char verbose);

// ---- text editor and printing

// Brings the editor to view, or opens one on the document as it is in memory.
void jxmlfile_open(t_jxmlfile *holder);
void jxmlfile_openeditor(t_jxmlfile *holder);

// The document as indented text in UTF-8, which is what the editor takes. A document without an encoding is written in
// ASCII; one in another encoding is turned into UTF-8, its declaration included. Null without a holder or a document,
// or when memory runs out.
xml_text jxmlfile_editor_text(const t_jxmlfile *holder);

// The owner forwards its editor's "edsave" and "edclose" here. Saving takes the text (at most `size` bytes, up to a
// zero) as the document and queues its writing: 1. -1 when the text does not parse: then the document that was held
// stays, nothing is written, and the console gets a line only for a text beyond a bound; xmlGetLastError() tells where
// libxml2 has given up. Neither is 0, after which an editor saves the text by itself. Without a `filename` the current
// file is written.
long jxmlfile_edsave(t_jxmlfile *holder, char **text, long size, const char *filename, short path_id);
void jxmlfile_edclose(t_jxmlfile *holder, char **text, long size);

// Posts the elements of the document to the console, one line for each tag; jxmlfile_print_element_names those of a
// node and its following siblings. Lines are cut to fit 1024 bytes. Without a root element nothing is posted.
void jxmlfile_print(t_jxmlfile *holder);
void jxmlfile_print_element_names(xmlNodePtr first);

// Reads the current file again, from the low-priority queue.
void jxmlfile_bang(t_jxmlfile *holder);
