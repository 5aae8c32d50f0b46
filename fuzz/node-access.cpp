// Operations on the nodes of a document, after each of which its text reads back as the document in memory.
#include "fuzz.h"

static std::string text_of(const xmlChar *text) { return text ? reinterpret_cast<const char *>(text) : ""; }

static std::string full_name(const xmlNs *ns, const xmlChar *name) {
    return (ns && ns->prefix ? text_of(ns->prefix) + ":" : "") + text_of(name);
}

// The nodes in a form of our own. Texts that follow each other are read as one, and so are CDATA sections.
static void describe(const xmlNode *first, std::string &out) {
    for (const xmlNode *node = first; node; node = node->next) {
        const bool is_text = node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
        if (!(is_text && node->prev && node->prev->type == node->type))
            out += "\n" + std::to_string(node->type) + " ";
        if (node->type != XML_ELEMENT_NODE) {
            out += text_of(is_text || node->type == XML_COMMENT_NODE ? node->content : node->name);
            continue;
        }
        out += full_name(node->ns, node->name);
        for (const xmlNs *ns = node->nsDef; ns; ns = ns->next)
            out += " xmlns:" + text_of(ns->prefix) + "=" + text_of(ns->href);
        for (const xmlAttr *attribute = node->properties; attribute; attribute = attribute->next) {
            out += " " + full_name(attribute->ns, attribute->name) + "=";
            describe(attribute->children, out);
        }
        out += " {";
        describe(node->children, out);
        out += "}";
    }
}

static std::string description(xmlDocPtr doc) {
    std::string text;
    describe(xmlDocGetRootElement(doc), text);
    return text;
}

// A document that cannot be read again is one without a root element, or one of elements with a position in their name.
static void expect_same_when_read(xmlDocPtr doc) {
    xmlChar *dumped = nullptr;
    int size = 0;
    xmlDocDumpMemory(doc, &dumped, &size);
    const xml_text text(dumped);
    const xml_doc read(xmlReadMemory(text_of(dumped).c_str(), size, nullptr, nullptr, XML_PARSE_NONET));
    const std::string described = description(doc);
    if (xmlDocGetRootElement(doc) && described.find('[') == described.npos)
        fuzz::expect(read && description(read.get()) == described,
                     "reads back as another document: " + text_of(dumped));
}

FUZZ_TARGET(input) {
    fuzz::Host host;
    fuzz::Bytes bytes(input);
    XmlGenerator generator([&bytes] { return bytes.number(); });
    fuzz::write_file("given.xml", "<?xml version='1.0'?>" + generator.document());
    const quiet_libxml quiet;
    const std::unique_ptr<t_jxmlfile, Releaser<jxmlfile_free>> holder(jxmlfile_new(nullptr));
    jxmlfile_load(holder.get(), "given.xml", 0);
    while (!bytes.is_over()) {
        const std::string path = generator.once_in(2) ? generator.path() : bytes.text(16);
        change_nodes(holder.get(), generator, path);
        expect_same_when_read(holder->doc);
    }
}
