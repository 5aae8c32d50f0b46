// Owners: what a scope holds is released exactly once, when the scope ends.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include "ext.h"
#include "ext_critical.h"
#include "jgraphics.h"

// Calls a plain release function, so that a unique_ptr of any of the types below is as small as a pointer.
template <auto release> struct Releaser {
    template <typename T> void operator()(T *owned) const { release(owned); }
};

// xmlFree is a variable: it is read when the text is released, not before.
struct XmlTextReleaser {
    void operator()(xmlChar *text) const { xmlFree(text); }
};

// A block of the host's allocator (sysmem_newptr, atom_alloc).
template <typename T> using host_block = std::unique_ptr<T, Releaser<sysmem_freeptr>>;

// An array from malloc.
template <typename T> using malloc_array = std::unique_ptr<T[], Releaser<std::free>>;

using xml_doc = std::unique_ptr<xmlDoc, Releaser<xmlFreeDoc>>;
using xml_parser = std::unique_ptr<xmlParserCtxt, Releaser<xmlFreeParserCtxt>>;
using xml_node = std::unique_ptr<xmlNode, Releaser<xmlFreeNode>>; // only while it is in no document
using xml_text = std::unique_ptr<xmlChar, XmlTextReleaser>;
using xpath_context = std::unique_ptr<xmlXPathContext, Releaser<xmlXPathFreeContext>>;
using xpath_run = std::unique_ptr<xmlXPathParserContext, Releaser<xmlXPathFreeParserContext>>;
using xpath_object = std::unique_ptr<xmlXPathObject, Releaser<xmlXPathFreeObject>>;
using image_surface = std::unique_ptr<t_jsurface, Releaser<jgraphics_surface_destroy>>;

// The host's global critical region, held until the scope ends. It nests.
class critical_section {
  public:
    critical_section() { critical_enter(0); }
    ~critical_section() { critical_exit(0); }
    critical_section(const critical_section &) = delete;
    critical_section &operator=(const critical_section &) = delete;
};

// What libxml2 would print on standard error about a document or an expression stays unsaid on this thread until the
// scope ends: the modules report failures in the console. That memory has run out is remembered.
class quiet_libxml {
  public:
    quiet_libxml() {
        xmlSetGenericErrorFunc(nullptr, ignore_text);
        xmlSetStructuredErrorFunc(this, note_record);
    }
    ~quiet_libxml() {
        xmlSetGenericErrorFunc(generic_context, generic);
        xmlSetStructuredErrorFunc(structured_context, structured);
    }
    quiet_libxml(const quiet_libxml &) = delete;
    quiet_libxml &operator=(const quiet_libxml &) = delete;

    // libxml2 may have gone on with a part missing.
    bool out_of_memory() const { return memory_ran_out; }

    // How many inputs the parser that is watched had when memory ran out in it; any number, when it has not.
    void watch(const xmlParserCtxt *parser) { watched = parser; }
    int inputs_left() const { return inputs; }

  private:
    static void ignore_text(void *, const char *, ...) {}
    template <typename Error> static void note_record(void *self, Error *error) { // const or not, by the version
        if (error->code == XML_ERR_NO_MEMORY)
            static_cast<quiet_libxml *>(self)->note_shortage(error->ctxt);
    }
    void note_shortage(const void *context) {
        memory_ran_out = true;
        if (watched && context == watched)
            inputs = std::min(inputs, watched->inputNr);
    }

    bool memory_ran_out = false;
    const xmlParserCtxt *watched = nullptr;
    int inputs = INT_MAX;
    xmlGenericErrorFunc generic = xmlGenericError;
    void *generic_context = xmlGenericErrorContext;
    xmlStructuredErrorFunc structured = xmlStructuredError;
    void *structured_context = xmlStructuredErrorContext;
};
