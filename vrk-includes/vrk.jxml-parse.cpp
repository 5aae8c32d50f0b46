// Texts of XML files as documents: within bounds, or refused with a line that says why.
#include <algorithm>
#include <cstring>

#include <libxml/SAX2.h>
#include <libxml/entities.h>
#include <libxml/parserInternals.h>

#include "vrk.jxml-parse.h"

// Blanks between elements are dropped, and texts of a few bytes stand in their nodes: such a content is not a block of
// its own, which only xmlNodeSetContent, through which contents are changed, knows how to replace. The text comes in
// UTF-8, whatever encoding it declares. The other options keep libxml2 quiet and off the network; entities are neither
// replaced nor loaded.
constexpr int PARSE_OPTIONS = XML_PARSE_NOBLANKS | XML_PARSE_COMPACT | XML_PARSE_IGNORE_ENC | XML_PARSE_NOERROR |
                              XML_PARSE_NOWARNING | XML_PARSE_NONET;

constexpr size_t EXPANSION_LIMIT = 10'000'000; // bytes that all entity references of a document may expand to
constexpr int ENTITY_NESTING_LIMIT = 64;       // libxml2 refuses entities that are nested deeper than 40

namespace {

const xmlChar *as_xml(const char *text) { return reinterpret_cast<const xmlChar *>(text); }
const char *as_text(const xmlChar *text) { return reinterpret_cast<const char *>(text); }

// ---- general entities, expanded where the content of a document is asked for

// The sizes below stop growing here, so that they can be added without a thought.
size_t bounded_sum(size_t a, size_t b) { return std::min(a + b, EXPANSION_LIMIT + 1); }

size_t expansion(xmlDocPtr doc, xmlNodePtr first, int nesting);

// The bytes that a reference to an entity stands for, remembered (plus one) where libxml2 leaves room for applications.
size_t entity_expansion(xmlDocPtr doc, const xmlChar *name, int nesting) {
    xmlEntityPtr entity = xmlGetDocEntity(doc, name);
    if (!entity) // a document type in another file may declare it
        return 0;
    if (!entity->_private) {
        size_t size = EXPANSION_LIMIT + 1;
        if (nesting < ENTITY_NESTING_LIMIT) // GCOVR_EXCL_BR_LINE: libxml2 has refused the others
            size = entity->children ? expansion(doc, entity->children, nesting + 1)
                                    : bounded_sum(0, static_cast<size_t>(std::max(entity->length, 0)));
        entity->_private = reinterpret_cast<void *>(size + 1);
    }
    return reinterpret_cast<size_t>(entity->_private) - 1;
}

// The node that follows in document order without leaving `top`; null at the end. Only elements are entered: the
// children of an entity reference are the entity's own declaration.
xmlNodePtr next_within(xmlNodePtr node, const xmlNode *top) {
    if (node->type == XML_ELEMENT_NODE && node->children)
        return node->children;
    while (node != top && !node->next)
        node = node->parent;
    return node == top ? nullptr : node->next;
}

// What one node adds to an expansion. Text counts inside of entities only: a document may be as long as it likes.
size_t node_expansion(xmlDocPtr doc, const xmlNode *node, int nesting) {
    size_t size = 0;
    if (node->type == XML_ENTITY_REF_NODE) {
        size = entity_expansion(doc, node->name, nesting);
    } else if (node->type == XML_ELEMENT_NODE) {
        for (const xmlAttr *attribute = node->properties; attribute; attribute = attribute->next)
            size = bounded_sum(size, expansion(doc, attribute->children, nesting));
    } else if (nesting > 0 && node->content && (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)) {
        size = bounded_sum(0, std::strlen(as_text(node->content)));
    }
    return size;
}

// The bytes that the entity references in a list of siblings expand to, with all that is below them. Nothing is
// expanded on the way.
size_t expansion(xmlDocPtr doc, xmlNodePtr first, int nesting) {
    size_t size = 0;
    for (xmlNodePtr top = first; top; top = top->next)
        for (xmlNodePtr node = top; node && size <= EXPANSION_LIMIT; node = next_within(node, top))
            size = bounded_sum(size, node_expansion(doc, node, nesting));
    return size;
}

// ---- parameter entities, expanded while the document type is parsed

// The words of what a parameter entity stands for, or more.
long word_count(const xmlEntity *entity) {
    const std::string_view text(entity && entity->content ? as_text(entity->content) : "");
    constexpr std::string_view ends = " \t\n\r|,&"; // a character may be written as a reference
    constexpr size_t longest = 100;                 // bytes of a word that counts as one
    const auto words = std::count_if(text.begin(), text.end(), [ends](char c) { return ends.find(c) != ends.npos; });
    return static_cast<long>(words) + static_cast<long>(text.size() / longest) + 1;
}

// What a parser hands to the functions below.
struct parameter_watch {
    long words_left;
    const xmlChar *declared; // the entity that was declared last
};

parameter_watch *watch_of(const xmlParserCtxt *parser) { return static_cast<parameter_watch *>(parser->_private); }

void note_declaration(void *parser, const xmlChar *name, int type, const xmlChar *public_id, const xmlChar *system_id,
                      xmlChar *content) {
    xmlSAX2EntityDecl(parser, name, type, public_id, system_id, content);
    watch_of(static_cast<xmlParserCtxtPtr>(parser))->declared = name;
}

// Whether libxml2 asks for an entity because it has just come to the end of its declaration, after the ">". After a
// reference in the document type it stands after a ";", after one in an entity's value at a quotation mark.
bool is_being_declared(const xmlParserCtxt *parser, const xmlChar *name) {
    const xmlParserInput *input = parser->input;
    return xmlStrEqual(watch_of(parser)->declared, name) && input->cur > input->base && input->cur[-1] == '>';
}

// Stops a parser when the references to parameter entities, each wherever libxml2 comes to it, stand for more words
// than are left. Only here can be seen what they stand for: an entity may hold references to others, in as many
// disguises as a character can be written in. Some thousands keep libxml2 2.9.14 busy for ever.
xmlEntityPtr bounded_parameter_entity(void *parser, const xmlChar *name) {
    auto *context = static_cast<xmlParserCtxtPtr>(parser);
    xmlEntityPtr entity = xmlSAX2GetParameterEntity(parser, name);
    if (is_being_declared(context, name))
        return entity;
    watch_of(context)->words_left -= 1 + word_count(entity);
    if (watch_of(context)->words_left >= 0)
        return entity;
    xmlStopParser(context);
    return nullptr;
}

// ---- the parser

// Hands the rest of a text to libxml2 piece by piece. From memory at once it would not read more than ten megabytes.
int take_piece(void *rest, char *buffer, int size) {
    auto *text = static_cast<std::string_view *>(rest);
    const size_t taken = text->copy(buffer, static_cast<size_t>(size));
    text->remove_prefix(taken);
    return static_cast<int>(taken);
}

// Has a parser in which memory ran out while it had so many inputs let itself be freed: libxml2 2.9.14 frees an input
// that it opens after that, and keeps it.
void mend_parser(xmlParserCtxt *parser, int inputs) { parser->inputNr = std::min(parser->inputNr, inputs); }

// Puts the encoding that a text declares into its document, which is going to be saved in it; false without memory.
bool keep_encoding(xmlDoc *document, const std::string &encoding) {
    if (encoding.empty())
        return true;
    const xml_text former(const_cast<xmlChar *>(document->encoding));
    document->encoding = xmlStrdup(as_xml(encoding.c_str()));
    return document->encoding;
}

} // namespace

bool jxml_look_through(t_object *owner, std::string_view bytes, const char *name, jxml_text *out) {
    jxml_refusal refusal = jxml_decode(bytes, &out->decoded);
    if (!refusal.format) {
        out->seen = out->decoded.text;
        const jxml_bounds bounds = jxml_bounds_check(&out->seen);
        refusal = bounds.refusal;
        out->parameter_words = bounds.parameter_words;
    }
    if (refusal.format)
        object_error(owner, refusal.format, name, refusal.limit);
    return !refusal.format;
}

xml_doc jxml_parse(t_object *owner, const jxml_text &text, const char *name, const char *url) {
    quiet_libxml quiet;
    const xml_parser parser(xmlNewParserCtxt());
    if (!parser)
        return nullptr;
    quiet.watch(parser.get());
    xmlDictSetLimit(parser->dict, JXML_NAME_BYTES); // its table does not grow with it, so that it gets slow
    parameter_watch parameters = {text.parameter_words, nullptr};
    parser->_private = &parameters;
    parser->sax->entityDecl = note_declaration;
    parser->sax->getParameterEntity = bounded_parameter_entity;
    std::string_view rest = text.seen;
    xml_doc document(xmlCtxtReadIO(parser.get(), take_piece, nullptr, &rest, url, nullptr, PARSE_OPTIONS));
    mend_parser(parser.get(), quiet.inputs_left());
    xmlDictSetLimit(parser->dict, 0); // the document goes on with it
    if (document && !keep_encoding(document.get(), text.decoded.encoding))
        document.reset();
    if (quiet.out_of_memory()) // something of it may be missing
        document.reset();
    jxml_refusal refusal = {nullptr, 0};
    if (parameters.words_left < 0)
        refusal = {"parameter entities of %s expand to more than %ld words", text.parameter_words};
    else if (!document && xmlDictGetUsage(parser->dict) > JXML_NAME_BYTES / 2)
        refusal = {"names in %s take more than %ld bytes", static_cast<long>(JXML_NAME_BYTES)};
    else if (document && document->intSubset && expansion(document.get(), document->children, 0) > EXPANSION_LIMIT)
        refusal = {"entities of %s expand to more than %ld bytes", static_cast<long>(EXPANSION_LIMIT)};
    if (!refusal.format)
        return document;
    xmlResetLastError(); // what it says is not the reason
    object_error(owner, refusal.format, name, refusal.limit);
    return nullptr;
}
