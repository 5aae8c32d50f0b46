// Plain paths: what they select in a document is answered without XPath, numbered elements from an index.
//
// A plain path is an absolute expression of element names without prefixes, behind each of which the filter
// "[@NAME=NUMBER]" with a whole number may stand: "/resourcefile/resource/string[@number=5]/label". XPath visits every
// element for it; here the elements at the last filter are sorted by their number once, and looked up from then on. The
// answers are those of XPath 1.0 through libxml2: names match elements and attributes in no namespace only, an
// attribute that comes from a DTD is none, and neither is a child behind an entity reference; the number of an
// attribute is libxml2's cast.
//
// Whoever changes the document says so with the functions below. Main thread.
#pragma once

#include <libxml/tree.h>

// What a path selects: how many nodes, and the first in document order, or null.
struct path_selection {
    long count;
    xmlNodePtr first;
};

// The indexes of one document, made when they are first needed. They belong to that document: free them
// (jxml_index_free) before asking about another.
struct jxml_index;

// Answers a plain path; false when it is none, or memory runs out: then XPath has to be asked. `*index` is null before
// the first call and is made when it is needed.
bool jxml_index_select(jxml_index **index, xmlDocPtr doc, const char *expression, path_selection *out);

// The first node that a plain path without a filter selects, or null: the parent that an element is made under, which
// is mostly that of the element before.
xmlNodePtr jxml_index_parent(jxml_index *index, xmlDocPtr doc, const char *expression);

// An element was made: after that has happened. Its attribute `name` is set or taken away: "lost" before, even when it
// has none yet; "set" after it was set, in addition. It is taken out of the document, or its content is replaced:
// before. A null index is accepted.
void jxml_index_added(jxml_index *index, xmlNodePtr element);
void jxml_index_attribute_set(jxml_index *index, xmlNodePtr element, const char *name);
void jxml_index_attribute_lost(jxml_index *index, xmlNodePtr element, const char *name);
void jxml_index_removed(jxml_index *index, xmlNodePtr element);
void jxml_index_emptied(jxml_index *index, xmlNodePtr element);

// Forgets everything; null is accepted.
void jxml_index_free(jxml_index *index);
