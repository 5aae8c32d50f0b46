// The holder of one XML document: its file, the path language, access to nodes and attributes, editor and printing.
#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include <libxml/parserInternals.h>
#include <libxml/valid.h>

#include "vrk.jxmlfile.h"

#include "vrk.jxml-parse.h"
#include "vrk.numbers.h"
#include "vrk.pathname.h"
#include "vrk.utf8.h"
#include "vrk.wholefile.h"

// What libxml2 writes but refuses to read again.
constexpr size_t TEXT_LIMIT = XML_MAX_TEXT_LENGTH;                // bytes of a text, digits of a CDATA section
constexpr size_t NAME_LIMIT = XML_MAX_NAME_LENGTH;                // bytes of a name
constexpr size_t START_TAG_LIMIT = XML_MAX_LOOKUP_LIMIT / 10 * 9; // bytes of a start tag, a little room left
constexpr int DEPTH_LIMIT = 256;                                  // elements in each other

constexpr size_t STEP_SIZE = 128;   // one step of an expression, and each of its parts, with its terminating zero
constexpr size_t NUMBER_SIZE = 328; // any number as text: a double prints as 318 characters at most
constexpr size_t TAG_LINE_SIZE = 1024;

// Ends an evaluation that would take minutes: libxml2 alone needs 1.5 to 3 seconds for so many operations. The paths of
// resource files need about ten for each element.
constexpr unsigned long EVALUATION_LIMIT = 60'000'000;

// The libxml2 that evaluations can be limited with. The one that is there when the program runs may be older than the
// headers, and its contexts shorter.
#define OPERATION_LIMIT_VERSION 20910

// What must be free before an evaluation begins, in bytes: libxml2 2.9 crashes when memory runs out in the midst of
// one.
constexpr size_t EVALUATION_MEMORY = 256 * 1024;

// ---- small helpers

static const xmlChar *as_xml(const char *text) { return reinterpret_cast<const xmlChar *>(text); }
static const char *as_text(const xmlChar *text) { return reinterpret_cast<const char *>(text); }

// Text in a buffer that does not grow; what does not fit is left out from there on.
struct bounded_text {
    char *text;
    size_t size; // of the buffer
    size_t length;
    bool fits;
};

// Appends as much as fits, in whole UTF-8 characters.
static void append(bounded_text *to, const char *piece) {
    if (!to->fits)
        return;
    const std::string_view wanted(piece);
    const size_t taken = vrk_whole_characters(wanted, to->size - 1 - to->length);
    to->fits = taken == wanted.size();
    std::memcpy(to->text + to->length, piece, taken);
    to->length += taken;
    to->text[to->length] = '\0';
}

static void append(bounded_text *to, char piece) {
    to->fits = to->fits && to->length + 1 < to->size;
    if (!to->fits)
        return;
    to->text[to->length++] = piece;
    to->text[to->length] = '\0';
}

// Bytes that grow.
struct byte_buffer {
    malloc_array<char> bytes;
    size_t length = 0;
    size_t capacity = 0;
};

// Room for `more` bytes and a terminating zero; null when memory runs out.
static char *reserve(byte_buffer *buffer, size_t more) {
    const size_t needed = buffer->length + more + 1;
    if (needed > buffer->capacity) {
        const size_t capacity = std::max({needed, 2 * buffer->capacity, size_t{64}});
        char *grown = static_cast<char *>(std::realloc(buffer->bytes.get(), capacity));
        if (!grown)
            return nullptr;
        (void)buffer->bytes.release(); // realloc has taken care of it
        buffer->bytes.reset(grown);
        buffer->capacity = capacity;
    }
    return buffer->bytes.get() + buffer->length;
}

static bool append(byte_buffer *to, std::string_view bytes) {
    char *place = reserve(to, bytes.size());
    if (!place)
        return false;
    place[bytes.copy(place, bytes.size())] = '\0';
    to->length += bytes.size();
    return true;
}

// An integer in decimal, a float as "%f", any other atom as nothing.
static const char *number_text(const t_atom *atom, char (&buffer)[NUMBER_SIZE]) {
    buffer[0] = '\0';
    if (atom_gettype(atom) == A_LONG) {
        *std::to_chars(buffer, buffer + sizeof buffer - 1, atom_getlong(atom)).ptr = '\0';
    } else if (atom_gettype(atom) == A_FLOAT) {
        vrk_print_float(atom_getfloat(atom), buffer, sizeof buffer);
    }
    return buffer;
}

// The words that atoms are compared with, interned once.
struct keyword_symbols {
    const t_symbol *attr = gensym("attr");
    const t_symbol *text = gensym("text");
    const t_symbol *cdata = gensym("cdata");
    const t_symbol *as_int = gensym("int");
    const t_symbol *as_float = gensym("float");
};

static const keyword_symbols &keywords() {
    static const keyword_symbols all;
    return all;
}

// The result that an operation gives at once: 0 when there is a document to work on.
static long availability(const t_jxmlfile *holder) {
    if (!holder)
        return -2;
    return holder->loaded && holder->doc ? 0 : -1;
}

static long out_of_memory(const t_jxmlfile *holder) {
    object_error(holder->owner, "out of memory");
    return -1;
}

// ---- what XML can hold

static bool is_xml_character(unsigned c) {
    return c == '\t' || c == '\n' || c == '\r' || (c >= 0x20 && c < 0xD800) || (c >= 0xE000 && c < 0xFFFE) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

// Length of the UTF-8 sequence at `text` when it encodes a character that XML 1.0 allows, else 0.
static size_t xml_character(const unsigned char *text) {
    const unsigned first = text[0];
    if (first < 0x80)
        return is_xml_character(first) ? 1 : 0;
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4)
        return 0;
    unsigned character = first & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((text[i] & 0xC0) != 0x80) // the terminating zero as well
            return 0;
        character = character << 6 | (text[i] & 0x3Fu);
    }
    constexpr unsigned least[] = {0, 0, 0x80, 0x800, 0x10000}; // a longer form than necessary is invalid
    return character >= least[length] && is_xml_character(character) ? length : 0;
}

// The first place in a text where there is no character that XML can hold; null when there is none.
static const char *unholdable(const char *text) {
    while (*text) {
        if (*text >= ' ' && *text <= '~') { // nearly always
            ++text;
            continue;
        }
        const size_t length = xml_character(reinterpret_cast<const unsigned char *>(text));
        if (length == 0)
            return text;
        text += length;
    }
    return nullptr;
}

// Reports the place in a text from which on XML cannot hold it.
static long unholdable_error(const t_jxmlfile *holder, std::ptrdiff_t place) {
    object_error(holder->owner, "text cannot be held by xml (byte %ld)", static_cast<long>(place) + 1);
    return -1;
}

// Whether a text survives being written and read again; says why when it does not.
static bool can_hold_text(t_jxmlfile *holder, const char *text, size_t length) {
    if (length > TEXT_LIMIT) {
        object_error(holder->owner, "text is too long for xml (more than %ld bytes)", static_cast<long>(TEXT_LIMIT));
        return false;
    }
    const char *place = unholdable(text);
    return !place || unholdable_error(holder, place - text) == 0;
}

// A name of nothing but ASCII letters, digits and "_-.", as nearly all are.
static bool is_plain_name(const char *name) {
    const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    const auto is_other = [](char c) { return (c >= '0' && c <= '9') || c == '-' || c == '.'; };
    size_t length = is_letter(*name);
    while (length > 0 && (is_letter(name[length]) || is_other(name[length])))
        ++length;
    return length > 0 && length <= NAME_LIMIT && name[length] == '\0';
}

// A name of an element or attribute, with one prefix at most. xmlValidateQName would not do: it follows older editions
// of XML than the parser.
static bool is_xml_name(const char *name) {
    if (is_plain_name(name))
        return true;
    if (std::strlen(name) > NAME_LIMIT || unholdable(name) || !xmlValidateNameValue(as_xml(name)))
        return false;
    const char *colon = std::strchr(name, ':');
    return !colon || (colon != name && colon[1] != '\0' && !std::strchr(colon + 1, ':'));
}

// ---- the holder

static void replace_document(t_jxmlfile *holder, xml_doc document) {
    jxml_index_free(std::exchange(holder->index, nullptr));
    {
        const critical_section region;
        xmlDocPtr former = std::exchange(holder->doc, document.release());
        document.reset(former);
    }
    document.reset(); // a large document takes its time, nobody has to wait for it
}

static std::atomic<long> living_holders{0};

t_jxmlfile *jxmlfile_new(t_object *owner) {
    auto *holder = reinterpret_cast<t_jxmlfile *>(sysmem_newptr(sizeof(t_jxmlfile)));
    if (!holder)
        return nullptr;
    *holder = {};
    ++living_holders;
    holder->owner = owner;
    holder->root = gensym("resourcefile");
    holder->xmlpath[0] = gensym("resource");
    holder->xmlpath[1] = gensym("long");
    holder->read_qelem = qelem_new(holder, (method)jxmlfile_doread);
    holder->write_qelem = qelem_new(holder, (method)jxmlfile_dowrite);
    if (!holder->read_qelem || !holder->write_qelem) {
        jxmlfile_free(holder);
        return nullptr;
    }
    return holder;
}

void jxmlfile_free(t_jxmlfile *holder) {
    if (!holder)
        return;
    // The editor goes first: its owner may hear of it and call jxmlfile_edsave or jxmlfile_edclose.
    if (t_object *editor = std::exchange(holder->editor, nullptr))
        freeobject(editor);
    if (holder->read_qelem)
        qelem_free(holder->read_qelem);
    if (holder->write_qelem)
        qelem_free(holder->write_qelem);
    jxml_index_free(holder->index);
    if (holder->doc)
        xmlFreeDoc(holder->doc);
    // What libxml2 keeps for the whole process must not go while another holder has a document.
    if (--living_holders == 0)
        xmlCleanupParser();
    sysmem_freeptr(holder);
}

t_max_err jxmlfile_getroot(t_jxmlfile *holder, void *, long *argc, t_atom **argv) {
    if (!holder)
        return MAX_ERR_INVALID_PTR;
    char allocated = 0;
    const t_max_err error = atom_alloc(argc, argv, &allocated);
    const critical_section region;
    return error ? error : atom_setsym(*argv, holder->root);
}

t_max_err jxmlfile_root(t_jxmlfile *holder, void *, long argc, t_atom *argv) {
    if (argc < 1 || atom_gettype(argv) != A_SYM)
        return MAX_ERR_INVALID_PTR;
    const critical_section region;
    if (holder)
        holder->root = atom_getsym(argv);
    return MAX_ERR_NONE;
}

t_max_err jxmlfile_getxmlpath(t_jxmlfile *holder, void *, long *argc, t_atom **argv) {
    if (!holder || (*argv && *argc == 1)) // the caller's own array has to hold both words
        return MAX_ERR_INVALID_PTR;
    char allocated = 0;
    if (const t_max_err error = atom_alloc_array(2, argc, argv, &allocated))
        return error;
    const critical_section region;
    atom_setsym(*argv, holder->xmlpath[0]);
    return atom_setsym(*argv + 1, holder->xmlpath[1]);
}

t_max_err jxmlfile_xmlpath(t_jxmlfile *holder, void *, long argc, t_atom *argv) {
    const critical_section region;
    for (long i = 0; i < argc && i < 2 && atom_gettype(argv + i) == A_SYM; ++i) {
        if (!holder)
            return MAX_ERR_INVALID_PTR;
        holder->xmlpath[i] = atom_getsym(argv + i);
    }
    return MAX_ERR_NONE;
}

// ---- its file

// The native form of a host path name; null when the host cannot give it.
static t_symbol *native_path(const t_jxmlfile *holder, t_symbol *pathname) {
    t_symbol *path = vrk_path_to_OSX_path(holder->owner, pathname);
    return path->s_name[0] ? path : nullptr;
}

// The native path of a file that the search path knows, or null; an open editor hears of the file.
static t_symbol *locate(t_jxmlfile *holder, t_symbol *name) {
    char found[MAX_PATH_CHARS];
    char path[MAX_PATH_CHARS] = "";
    short path_id = 0;
    t_fourcc type = 0;
    if (std::strlen(name->s_name) >= sizeof found)
        return nullptr;
    strncpy_zero(found, name->s_name, sizeof found);
    if (locatefile_extended(found, &path_id, &type, nullptr, 0) != 0)
        return nullptr;
    if (holder->editor)
        object_method(holder->editor, gensym("filename"), found, path_id);
    return path_topotentialname(path_id, found, path, 0) == 0 ? native_path(holder, gensym(path)) : nullptr;
}

static bool not_found(const t_jxmlfile *holder, const char *name) {
    object_error(holder->owner, "can't find %s", name);
    return false;
}

static bool set_current_file(t_jxmlfile *holder, t_symbol *name) {
    t_symbol *path = locate(holder, name);
    if (!path)
        return not_found(holder, name->s_name);
    if (path == holder->file_path) {
        holder->loaded = 1; // even when its parse has failed: naming the current file counts as having it
        return true;
    }
    holder->loaded = 0;
    holder->file_path = path;
    holder->write_path = path;
    return true;
}

void jxmlfile_filename(t_jxmlfile *holder, t_symbol *name) {
    if (holder && name)
        set_current_file(holder, name);
}

void jxmlfile_read(t_jxmlfile *holder, t_symbol *name) {
    if (!holder)
        return;
    jxmlfile_filename(holder, name);
    qelem_set(holder->read_qelem); // even when the name was not found: the current file is then read again
}

void jxmlfile_doread(t_jxmlfile *holder) {
    if (!holder || !holder->file_path)
        return;
    const char *path = holder->file_path->s_name;
    size_t size = 0;
    const malloc_array<char> bytes(vrk_read_file(path, &size));
    jxml_text text;
    xml_doc document;
    if (bytes && jxml_look_through(holder->owner, std::string_view(bytes.get(), size), path, &text)) {
        const critical_section region;
        document = jxml_parse(holder->owner, text, path, path);
    }
    if (!document)
        object_error(holder->owner, "unable to parse file %s", path);
    holder->loaded = document ? 1 : 0;
    replace_document(holder, std::move(document));
}

// Whether an open file begins with "<?xml". The file is closed.
static bool begins_as_xml(t_filehandle file) {
    constexpr char beginning[] = {'<', '?', 'x', 'm', 'l'};
    char bytes[sizeof beginning] = {};
    t_ptr_size count = sizeof bytes;
    const t_max_err error = sysfile_read(file, &count, bytes);
    sysfile_close(file);
    return error == MAX_ERR_NONE && std::memcmp(bytes, beginning, sizeof bytes) == 0;
}

// The native path that a file has or would have; null when the host cannot give it.
static t_symbol *full_path(const t_jxmlfile *holder, const char *filename, short path_id) {
    char path[MAX_PATH_CHARS] = "";
    return path_topotentialname(path_id, filename, path, 0) == 0 ? native_path(holder, gensym(path)) : nullptr;
}

short jxmlfile_load(t_jxmlfile *holder, const char *filename, short path_id) {
    if (!holder || !filename)
        return 0;
    t_symbol *path = full_path(holder, filename, path_id);
    if (path && path == holder->file_path && holder->loaded)
        return 1;
    t_filehandle file = nullptr;
    if (const short error = path_opensysfile(filename, path_id, &file, PATH_READ_PERM)) {
        object_post(holder->owner, "err %ld opening %s", static_cast<long>(error), filename);
        return 0;
    }
    if (!begins_as_xml(file) || !path || !set_current_file(holder, path))
        return 0;
    jxmlfile_doread(holder);
    return 1;
}

xml_doc jxmlfile_make_document(const t_jxmlfile *holder) {
    const quiet_libxml quiet;
    xml_doc document(xmlNewDoc(as_xml("1.0")));
    if (!document)
        return nullptr;
    // Holds each name once, as in a document that was parsed. With it libxml2 makes no element without a name.
    document->dict = xmlDictCreate();
    xmlNodePtr root =
        document->dict ? xmlNewDocNode(document.get(), nullptr, as_xml(holder->root->s_name), nullptr) : nullptr;
    if (!root)
        return nullptr;
    xmlDocSetRootElement(document.get(), root);
    if (!xmlNewChild(root, nullptr, as_xml(holder->xmlpath[0]->s_name), nullptr))
        document.reset();
    return document;
}

static bool set_write_path(t_jxmlfile *holder, t_symbol *pathname) {
    t_symbol *path = native_path(holder, pathname);
    if (!path)
        return not_found(holder, pathname->s_name);
    holder->write_path = path;
    return true;
}

void jxmlfile_newdoc(t_jxmlfile *holder, t_symbol *pathname) {
    if (!holder || !pathname)
        return;
    for (const t_symbol *name : {holder->root, holder->xmlpath[0]})
        if (!is_xml_name(name->s_name)) {
            object_error(holder->owner, "\"%s\" cannot name an element", name->s_name);
            return;
        }
    xml_doc document = jxmlfile_make_document(holder);
    if (!document) {
        out_of_memory(holder);
        return;
    }
    replace_document(holder, std::move(document));
    if (set_write_path(holder, pathname))
        jxmlfile_dowrite(holder);
}

void jxmlfile_write(t_jxmlfile *holder, t_symbol *pathname) {
    if (holder && pathname && set_write_path(holder, pathname))
        qelem_set(holder->write_qelem);
}

void jxmlfile_writeagain(t_jxmlfile *holder) {
    if (holder)
        qelem_set(holder->write_qelem);
}

void jxmlfile_dowrite(t_jxmlfile *holder) {
    if (!holder || !holder->write_path)
        return;
    vrk_save_document(holder->write_path, holder->doc); // callers that report a failure call it themselves
    holder->file_path = holder->write_path;
    vrk_set_editorfile_from_pathname(holder->editor, holder->file_path);
}

// ---- the path language

static t_atom *take_atom(long *argc, t_atom **argv) {
    --*argc;
    return (*argv)++;
}

// The filter after the symbol "attr": a name and a value. Values are not quoted.
static void append_filter(bounded_text *expression, long *argc, t_atom **argv) {
    if (*argc <= 0)
        return;
    const t_atom *name = take_atom(argc, argv);
    if (atom_gettype(name) != A_SYM)
        return; // it has taken the name's place all the same
    append(expression, '[');
    append(expression, '@');
    append(expression, atom_getsym(name)->s_name);
    append(expression, '=');
    if (*argc <= 0)
        return;
    const t_atom *value = take_atom(argc, argv);
    char number[NUMBER_SIZE];
    switch (atom_gettype(value)) {
    case A_SYM:
        append(expression, atom_getsym(value)->s_name);
        break;
    case A_LONG:
    case A_FLOAT:
        append(expression, number_text(value, number));
        break;
    default:
        return; // the filter stays open, and the expression will be refused
    }
    append(expression, ']');
}

// Appends the expression of a path to a buffer of JXMLFILE_EXPRESSION_SIZE bytes; false when it does not fit. It then
// ends with "[", with which no expression can end: a part of a path must not be taken for another path.
static bool append_expression(long *argc, t_atom **argv, char *buffer) {
    bounded_text expression = {buffer, JXMLFILE_EXPRESSION_SIZE, strnlen(buffer, JXMLFILE_EXPRESSION_SIZE - 1), true};
    char number[NUMBER_SIZE];
    const t_symbol *attr = keywords().attr;
    while (*argc > 0) {
        const t_atom *atom = take_atom(argc, argv);
        const long type = atom_gettype(atom);
        const t_symbol *word = type == A_SYM ? atom_getsym(atom) : nullptr;
        if (word == attr) {
            append_filter(&expression, argc, argv);
        } else if (word) {
            append(&expression, '/');
            append(&expression, word->s_name);
        } else if (type == A_LONG) {
            append(&expression, '[');
            append(&expression, number_text(atom, number));
            append(&expression, ']');
        } // else left out: a float is not a position (docs/compatibility.md)
    }
    if (!expression.fits)
        std::memcpy(buffer + vrk_whole_characters({buffer, expression.length}, expression.size - 2), "[", 2);
    return expression.fits;
}

void jxmlfile_to_xmlXPath(long *argc, t_atom **argv, char **buffer) { append_expression(argc, argv, *buffer); }

// ---- finding nodes

// A context on the holder's document; null is reported.
static xpath_context new_context(t_jxmlfile *holder) {
    const quiet_libxml quiet;
    xpath_context context(xmlXPathNewContext(holder->doc));
    if (!context) {
        object_error(holder->owner, "unable to create new xpath context");
        return nullptr;
    }
#if LIBXML_VERSION >= OPERATION_LIMIT_VERSION
    if (std::atol(xmlParserVersion) >= OPERATION_LIMIT_VERSION) // GCOVR_EXCL_BR_LINE: tests run with one libxml2 only
        context->opLimit = EVALUATION_LIMIT;
#endif
    return context;
}

// xmlXPathEvalExpression in its own steps, but that the stack is made first: when memory runs out for it, libxml2 2.9
// releases the run and goes on with it. Text after an expression makes it malformed, whichever version is there. Null
// without memory as well; what has been found by then could be a part.
static xpath_object run_expression(xmlXPathContextPtr context, const char *expression) {
    const quiet_libxml quiet;
    if (!xml_text(static_cast<xmlChar *>(xmlMalloc(EVALUATION_MEMORY))))
        return nullptr;
    constexpr int depth = 10; // it grows
    const xpath_run run(xmlXPathNewParserContext(as_xml(expression), context));
    auto *stack = run ? static_cast<xmlXPathObjectPtr *>(xmlMalloc(depth * sizeof(xmlXPathObjectPtr))) : nullptr;
    if (!stack)
        return nullptr;
    run->valueTab = stack;
    run->valueMax = depth;
    xmlXPathEvalExpr(run.get());
    xpath_object found(run->error == XPATH_EXPRESSION_OK ? valuePop(run.get()) : nullptr);
    // Up to 2.9.4 text after the expression is left to the caller; of a plain path nothing counts as read.
    const bool ends_there = !*run->cur || run->cur == run->base;
    if (!ends_there || quiet.out_of_memory())
        found.reset();
    return found;
}

// What an expression gives; null is reported. libxml2 hands out node sets in document order.
static xpath_object evaluate(t_jxmlfile *holder, xmlXPathContextPtr context, const char *expression) {
    xpath_object found = run_expression(context, expression);
    if (!found)
        object_error(holder->owner, "unable to evaluate xpath expression \"%s\"", expression);
    return found;
}

long jxmlfile_get_nodeset(t_jxmlfile *holder, long *argc, t_atom **argv, xmlXPathObjectPtr *out) {
    char expression[JXMLFILE_EXPRESSION_SIZE] = "";
    append_expression(argc, argv, expression);
    if (!holder->doc)
        return -1;
    const xpath_context context = new_context(holder);
    if (!context)
        return -4;
    *out = evaluate(holder, context.get(), expression).release();
    return *out ? 0 : -1;
}

// What an expression selects.
struct selection {
    bool is_nodeset;
    path_selection nodes;
    xpath_object found; // keeps namespace nodes alive
};

// Plain paths are answered from the index, the others by XPath, for which the context is made when it is first needed.
// 0, or a failure that has been reported.
static long select_nodes(t_jxmlfile *holder, xpath_context *context, const char *expression, selection *out) {
    *out = {};
    out->is_nodeset = jxml_index_select(&holder->index, holder->doc, expression, &out->nodes);
    if (out->is_nodeset)
        return 0;
    if (!*context)
        *context = new_context(holder);
    if (!*context)
        return -4;
    out->found = evaluate(holder, context->get(), expression);
    if (!out->found)
        return -1;
    out->is_nodeset = out->found->type == XPATH_NODESET;
    if (const xmlNodeSet *set = out->is_nodeset ? out->found->nodesetval : nullptr; set && set->nodeNr > 0)
        out->nodes = {set->nodeNr, set->nodeTab[0]};
    return 0;
}

static long select_path(t_jxmlfile *holder, long *argc, t_atom **argv, selection *out) {
    char expression[JXMLFILE_EXPRESSION_SIZE];
    expression[0] = '\0';
    append_expression(argc, argv, expression);
    xpath_context context;
    return holder->doc ? select_nodes(holder, &context, expression, out) : -1;
}

static long node_warning(t_jxmlfile *holder, const char *message, char verbose) {
    if (verbose)
        object_warn(holder->owner, "%s", message);
    return -1;
}

long jxmlfile_get_node(t_jxmlfile *holder, long *argc, t_atom **argv, xmlNodePtr *out, char verbose) {
    selection selected;
    if (const long failure = select_path(holder, argc, argv, &selected))
        return failure;
    xmlNodePtr node = selected.nodes.first;
    if (!node)
        return node_warning(holder, "no node at given path", verbose);
    if (node->type != XML_ELEMENT_NODE)
        return node_warning(holder, "invalid node at given path", verbose);
    *out = node;
    return 0;
}

// Whether a node can be changed; says why not. XPath leads into the declarations of entities, which libxml2 writes as
// they were read: what is changed there would be lost.
static bool can_be_changed(const t_jxmlfile *holder, const xmlNode *node) {
    const xmlNode *top = node->parent;
    while (top->type == XML_ELEMENT_NODE)
        top = top->parent;
    if (top->type != XML_ENTITY_DECL)
        return true;
    object_error(holder->owner, "node at given path stands in an entity");
    return false;
}

// jxmlfile_get_node for an element that is going to be changed.
static long get_node_to_change(t_jxmlfile *holder, long *argc, t_atom **argv, xmlNodePtr *out, char verbose) {
    const long failure = jxmlfile_get_node(holder, argc, argv, out, verbose);
    return failure || can_be_changed(holder, *out) ? failure : -1;
}

long jxmlfile_count_all(t_jxmlfile *holder, long argc, t_atom *argv, long *count) {
    if (const long refusal = availability(holder))
        return refusal;
    selection selected;
    if (const long failure = select_path(holder, &argc, &argv, &selected))
        return failure;
    if (!selected.is_nodeset)
        return -2;
    *count = selected.nodes.count;
    return 0;
}

long jxmlfile_count(t_jxmlfile *holder, long argc, t_atom *argv, short *count, char) {
    long all = 0;
    if (const long failure = jxmlfile_count_all(holder, argc, argv, &all))
        return failure;
    if (!count)
        return -2;
    if (all > SHRT_MAX)
        return -1;
    *count = static_cast<short>(all);
    return 0;
}

// ---- making nodes

// A step that names an element to be made, and the attribute that its filter asks for.
struct step_parts {
    char name[STEP_SIZE];
    char attribute[STEP_SIZE]; // empty without a filter
    char value[STEP_SIZE];
};

static void copy_part(char (&part)[STEP_SIZE], const char *begin, const char *end) {
    std::memcpy(part, begin, static_cast<size_t>(end - begin));
    part[end - begin] = '\0';
}

// Cuts a step at "[@", the "=" after it and the "]" after that; false when it is too long. Quotes around a value
// stay part of it: the attribute is made as the path spells it.
static bool split_step(const char *step, step_parts *parts) {
    const char *end = step + std::strlen(step);
    if (static_cast<size_t>(end - step) >= STEP_SIZE)
        return false;
    const char *filter = std::strstr(step, "[@");
    copy_part(parts->name, step, filter ? filter : end);
    parts->attribute[0] = parts->value[0] = '\0';
    const char *equals = filter ? std::strchr(filter, '=') : nullptr;
    if (!equals)
        return true;
    const char *bracket = std::strchr(equals, ']');
    copy_part(parts->attribute, filter + 2, equals);
    copy_part(parts->value, equals + 1, bracket ? bracket : end);
    return true;
}

// Takes one position, "[3]", off the end of a name; false when there is none.
static bool drop_position(char *name) {
    char *bracket = std::strrchr(name, '[');
    if (!bracket)
        return false;
    const char *digits = bracket + 1 + (bracket[1] == '-');
    const size_t count = std::strspn(digits, "0123456789");
    if (count == 0 || std::strcmp(digits + count, "]") != 0)
        return false;
    *bracket = '\0';
    return true;
}

// Whether an element may be made under that name. A position stays part of the name ("resource[3]"): such
// an element lives in memory only, as no file that holds it can be read again.
static bool is_element_name(const char *name) {
    if (is_plain_name(name)) // nearly always
        return true;
    char base[STEP_SIZE];
    strncpy_zero(base, name, sizeof base);
    while (drop_position(base)) {
    }
    return is_xml_name(base);
}

static bool can_have_children(const xmlNode *parent) {
    int depth = 0;
    for (const xmlNode *node = parent; node->type == XML_ELEMENT_NODE; node = node->parent) // up to the document
        ++depth;
    return depth > 0 && depth < DEPTH_LIMIT;
}

static xmlNodePtr creation_error(t_jxmlfile *holder, const char *what, const char *prefix) {
    object_error(holder->owner, "unable to create %s at xpath expression \"%s\"", what, prefix);
    return nullptr;
}

// Whether an attribute was made with its value. When memory runs out, libxml2 may leave its name or its value away;
// without a name it goes again.
static bool is_whole(xmlAttrPtr attribute, const char *value) {
    if (attribute && !attribute->name) {
        xmlRemoveProp(attribute);
        return false;
    }
    return attribute && (!*value || (attribute->children && attribute->children->content));
}

// Takes an element out of its document, with all that is in it.
static void discard(xmlNodePtr element) {
    xmlUnlinkNode(element);
    xmlFreeNode(element);
}

// Makes the element of a step under `parent`; null is reported with `prefix`, the expression up to the step.
static xmlNodePtr make_element(t_jxmlfile *holder, xmlNodePtr parent, const char *step, const char *prefix) {
    step_parts parts;
    if (!split_step(step, &parts) || !is_element_name(parts.name) || !can_have_children(parent))
        return creation_error(holder, "node", prefix);
    const bool has_attribute = parts.attribute[0] && parts.value[0];
    if (has_attribute && (!is_xml_name(parts.attribute) || unholdable(parts.value)))
        return creation_error(holder, "attribute", prefix);
    xmlNodePtr element = xmlNewChild(parent, nullptr, as_xml(parts.name), nullptr);
    if (!element)
        return creation_error(holder, "node", prefix);
    if (has_attribute && !is_whole(xmlNewProp(element, as_xml(parts.attribute), as_xml(parts.value)), parts.value)) {
        discard(element); // a resource without its number would stand in the way of the others
        return creation_error(holder, "attribute", prefix);
    }
    jxml_index_added(holder->index, element);
    return element;
}

// Whether a node can be the target of a path: what has a content of its own, and stays when the evaluation is
// forgotten.
static bool has_content(const xmlNode *node) {
    switch (node->type) {
    case XML_ELEMENT_NODE:
    case XML_ATTRIBUTE_NODE:
    case XML_TEXT_NODE:
    case XML_CDATA_SECTION_NODE:
    case XML_COMMENT_NODE:
    case XML_PI_NODE:
        return true;
    default:
        return false;
    }
}

// The first node that the whole expression selects, if it has a content; otherwise an element that is made. Walks the
// expression step by step; every "/" ends a step, also one in a value. Each prefix is evaluated from the document's
// root, so that what exists is always preferred.
static long walk_expression(t_jxmlfile *holder, char *expression, xmlNodePtr *io, char verbose) {
    xpath_context context;
    selection selected;
    xmlNodePtr current = *io;
    bool is_target = true;  // the last match
    char *end = expression; // of a step
    char ending = '\0';
    do {
        char *const step = end + (*end == '/');
        end = step + std::strcspn(step, "/");
        ending = std::exchange(*end, '\0');
        if (const long failure = select_nodes(holder, &context, expression, &selected))
            return failure;
        if (xmlNodePtr match = selected.nodes.first) {
            is_target = has_content(match);
            current = is_target ? match : nullptr; // a namespace node dies with `selected`
        } else if (current) {
            current = can_be_changed(holder, current) ? make_element(holder, current, step, expression) : nullptr;
            if (!current)
                return -1;
        } else if (!is_target) {
            creation_error(holder, "node", expression);
            return -1;
        } // else the document has another root element, and there is nothing to make a node under
        *end = ending;
    } while (ending);
    if (!is_target)
        return node_warning(holder, "invalid node at given path", verbose);
    if (current && !can_be_changed(holder, current))
        return -1;
    *io = current;
    return 0;
}

// The same for a plain path, which need not be walked from its beginning: an element that it selects has all the
// parents that its beginnings select. False when the path is not plain, or when there is nothing to begin with.
static bool walk_plain_path(t_jxmlfile *holder, char *expression, xmlNodePtr *io, long *result) {
    path_selection selected;
    if (!jxml_index_select(&holder->index, holder->doc, expression, &selected))
        return false;
    *result = 0;
    if (selected.first) {
        *io = selected.first;
        return true;
    }
    char *last = std::strrchr(expression, '/'); // of the last step, which has to be made
    *last = '\0';
    xmlNodePtr parent = jxml_index_parent(holder->index, holder->doc, expression);
    *last = '/';
    if (!parent)
        return false;
    *io = make_element(holder, parent, last + 1, expression);
    *result = *io ? 0 : -1;
    return true;
}

long jxmlfile_set_node(t_jxmlfile *holder, long *argc, t_atom **argv, xmlNodePtr *io, char verbose) {
    char expression[JXMLFILE_EXPRESSION_SIZE];
    expression[0] = '\0';
    const bool fits = append_expression(argc, argv, expression);
    if (!holder->doc)
        return -1;
    if (!fits) { // nothing is made on the way to something that cannot be reached
        object_error(holder->owner, "unable to evaluate xpath expression \"%s\"", expression);
        return -1;
    }
    long result = 0;
    return walk_plain_path(holder, expression, io, &result) ? result : walk_expression(holder, expression, io, verbose);
}

// ---- reading

// A byte counts as a blank when it is not above 32 as a signed character. A letter outside of ASCII goes with the
// blanks next to it (docs/compatibility.md); how many texts have lost one stands in the holder.
static bool is_blank(char byte) { return static_cast<signed char>(byte) <= 32; }

static bool is_outside_ascii(char byte) { return static_cast<signed char>(byte) < 0; }

// Cuts blanks off both ends; *lost becomes true when there was a letter among them.
static char *trimmed(char *text, bool *lost) {
    char *end = text + std::strlen(text);
    for (; end > text && is_blank(end[-1]); --end)
        *lost = *lost || is_outside_ascii(end[-1]);
    for (; text < end && is_blank(*text); ++text)
        *lost = *lost || is_outside_ascii(*text);
    *end = '\0';
    return text;
}

// The content of an element that is one text or one CDATA section, as nearly all are, without a copy; else null.
static const xmlChar *only_content(const xmlNode *first) { return first->next ? nullptr : first->content; }

// An empty text counts as not trimmed: its zero is a blank.
static bool is_trimmed(const char *text) { return !is_blank(*text) && !is_blank(text[std::strlen(text) - 1]); }

const char *jxmlfile_plain_text(const xmlNode *element) {
    const xmlNode *first = element->children;
    const xmlChar *content = first && first->type == XML_TEXT_NODE ? only_content(first) : nullptr;
    return content && is_trimmed(as_text(content)) ? as_text(content) : nullptr;
}

// A text as the kind of value that was asked for; a text that is no number counts as 0.
static void set_value(t_atom *atom, t_symbol *value_kind, const char *text) {
    if (value_kind == keywords().as_int) {
        atom_setlong(atom, static_cast<t_atom_long>(std::strtoll(text, nullptr, 10)));
    } else if (value_kind == keywords().as_float) {
        atom_setfloat(atom, vrk_read_float(text));
    } else {
        atom_setsym(atom, gensym(text));
    }
}

// The value of each character as a hexadecimal digit. Every character is read on its own, and one that is no digit
// counts as 0: content with a wrong digit is read all the same.
constexpr auto DIGIT_VALUES = [] {
    std::array<unsigned char, 256> values = {};
    for (unsigned char i = 0; i < 10; ++i)
        values['0' + i] = i;
    for (unsigned char i = 0; i < 6; ++i)
        values['A' + i] = values['a' + i] = static_cast<unsigned char>(10 + i);
    return values;
}();

static unsigned char byte_of_digits(const xmlChar *digits) {
    return static_cast<unsigned char>(DIGIT_VALUES[digits[0]] << 4 | DIGIT_VALUES[digits[1]]);
}

// The bytes as one object atom, a block that becomes the caller's.
static long bytes_as_block(const xmlChar *digits, size_t size, short *count, t_atom *result) {
    t_ptr block = sysmem_newptr(size);
    if (!block)
        return -1;
    for (size_t i = 0; i < size; ++i)
        block[i] = static_cast<char>(byte_of_digits(digits + 2 * i));
    atom_setobj(result, block);
    *count = 1;
    return 0;
}

// As many bytes as there is room for, a signed integer for each (docs/compatibility.md).
static long bytes_as_integers(const xmlChar *digits, size_t size, short *count, t_atom *result) {
    *count = static_cast<short>(std::min(size, static_cast<size_t>(*count)));
    for (short i = 0; i < *count; ++i)
        atom_setlong(result + i, static_cast<signed char>(byte_of_digits(digits + 2 * i)));
    return 0;
}

static long bytes_of_digits(const xmlChar *digits, short *count, t_atom *result) {
    const size_t size = std::strlen(as_text(digits)) / 2; // an odd last digit is left out
    return *count < 2 ? bytes_as_block(digits, size, count, result) : bytes_as_integers(digits, size, count, result);
}

// The content of an element; its first child decides whether it is text or bytes.
static long element_content(t_jxmlfile *holder, xmlNodePtr element, t_symbol *value_kind, short *count,
                            t_atom *result) {
    const xmlNode *first = element->children;
    const bool is_bytes = first && first->type == XML_CDATA_SECTION_NODE;
    if (first && first->type != XML_TEXT_NODE && !is_bytes)
        return -1;
    const char *text = jxmlfile_plain_text(element);
    const xmlChar *digits = is_bytes ? only_content(first) : nullptr;
    xml_text copy;
    if (!text && !digits) {
        copy.reset(xmlNodeGetContent(element));
        if (!copy)
            return -1;
    }
    if (is_bytes)
        return bytes_of_digits(digits ? digits : copy.get(), count, result);
    bool lost = false;
    set_value(result, value_kind, text ? text : trimmed(reinterpret_cast<char *>(copy.get()), &lost));
    holder->texts_cut += lost;
    *count = 1;
    return 0;
}

long jxmlfile_get(t_jxmlfile *holder, long argc, t_atom *argv, t_symbol *value_kind, short *count, t_atom **result,
                  char verbose) {
    if (const long refusal = availability(holder))
        return refusal;
    if (!count || !result || !*result)
        return -2;
    if (*count < 1)
        return -4;
    xmlNodePtr element = nullptr;
    if (const long failure = jxmlfile_get_node(holder, &argc, &argv, &element, verbose))
        return failure;
    return element_content(holder, element, value_kind, count, *result);
}

// ---- writing

// The blocks of object atoms, released when the scope ends; a block that stands there twice is released once.
class owned_blocks {
  public:
    owned_blocks(long argc, const t_atom *argv) : count(argc), atoms(argv) {}
    ~owned_blocks() {
        for (long i = 0; i < count; ++i)
            if (void *block = atom_getobj(atoms + i); block && !stands_before(i, block))
                sysmem_freeptr(block);
    }
    owned_blocks(const owned_blocks &) = delete;
    owned_blocks &operator=(const owned_blocks &) = delete;

  private:
    bool stands_before(long end, const void *block) const {
        return std::any_of(atoms, atoms + end, [block](const t_atom &atom) { return atom_getobj(&atom) == block; });
    }

    long count;
    const t_atom *atoms;
};

// The text of a block, which need not end with a zero.
static std::string_view block_text(void *block) {
    const char *text = static_cast<const char *>(block);
    return block ? std::string_view(text, strnlen(text, sysmem_ptrsize(block))) : std::string_view();
}

// Adds an atom and a blank to a text; false when memory runs out.
static bool append_atom(byte_buffer *text, const t_atom *atom) {
    char number[NUMBER_SIZE];
    std::string_view piece;
    switch (atom_gettype(atom)) {
    case A_SYM:
        piece = atom_getsym(atom)->s_name;
        break;
    case A_LONG:
    case A_FLOAT:
        piece = number_text(atom, number);
        break;
    case A_OBJ:
        piece = block_text(atom_getobj(atom));
        break;
    default:
        return true;
    }
    return append(text, piece) && append(text, " ");
}

// Joins the atoms with blanks between them, in the buffer unless it is one symbol; anything but 0 has been reported.
static long gather_text(t_jxmlfile *holder, byte_buffer *buffer, long argc, const t_atom *argv, const char **text) {
    if (argc == 1 && atom_gettype(argv) == A_SYM) {
        *text = atom_getsym(argv)->s_name;
        return can_hold_text(holder, *text, std::strlen(*text)) ? 0 : -1;
    }
    bool enough_memory = append(buffer, "");
    for (long i = 0; i < argc && enough_memory && buffer->length <= TEXT_LIMIT + 1; ++i) // with its last blank
        enough_memory = append_atom(buffer, argv + i);
    if (!enough_memory)
        return out_of_memory(holder);
    if (buffer->length > 0)
        buffer->bytes[--buffer->length] = '\0';
    *text = buffer->bytes.get();
    return can_hold_text(holder, *text, buffer->length) ? 0 : -1;
}

static long cdata_error(t_jxmlfile *holder, const char *digits) {
    constexpr long error = -1;
    // More digits than that have no room on a console line.
    object_error(holder->owner, "unable to create cdata %.1000s (err %ld)", digits, error);
    return error;
}

// The two digits of every byte.
constexpr auto DIGIT_PAIRS = [] {
    constexpr char DIGITS[] = "0123456789ABCDEF";
    std::array<std::array<char, 2>, 256> pairs = {};
    for (size_t i = 0; i != pairs.size(); ++i)
        pairs[i] = {DIGITS[i >> 4], DIGITS[i & 15]};
    return pairs;
}();

static long append_digits(t_jxmlfile *holder, byte_buffer *digits, std::string_view bytes) {
    if (bytes.size() > (TEXT_LIMIT - digits->length) / 2) {
        object_error(holder->owner, "data is too long for xml (more than %ld bytes)",
                     static_cast<long>(TEXT_LIMIT / 2));
        return -1;
    }
    char *place = reserve(digits, 2 * bytes.size());
    if (!place)
        return out_of_memory(holder);
    for (const char byte : bytes) {
        std::memcpy(place, &DIGIT_PAIRS[static_cast<unsigned char>(byte)], 2);
        place += 2;
    }
    *place = '\0';
    digits->length += 2 * bytes.size();
    return 0;
}

// The low eight bits of a number; a float is cut off towards zero.
static char low_byte(const t_atom *number) {
    if (atom_gettype(number) == A_LONG)
        return static_cast<char>(atom_getlong(number) & 0xFF);
    const double rest = std::fmod(std::trunc(static_cast<double>(atom_getfloat(number))), 256.0);
    return std::isfinite(rest) ? static_cast<char>(static_cast<int>(rest) & 0xFF) : '\0';
}

// Adds all bytes of a block to the digits.
static long append_block(t_jxmlfile *holder, byte_buffer *digits, void *block) {
    if (!block)
        return cdata_error(holder, "");
    return append_digits(holder, digits, std::string_view(static_cast<const char *>(block), sysmem_ptrsize(block)));
}

// Adds the bytes of one atom to the digits. Bytes that are given one by one are a text, in which a zero leaves
// no trace.
static long append_data(t_jxmlfile *holder, byte_buffer *digits, const t_atom *atom) {
    char byte = 0;
    switch (atom_gettype(atom)) {
    case A_SYM:
        return append_digits(holder, digits, atom_getsym(atom)->s_name);
    case A_LONG:
    case A_FLOAT:
        byte = low_byte(atom);
        return append_digits(holder, digits, std::string_view(&byte, byte ? 1 : 0));
    case A_OBJ:
        digits->length = 0; // a block replaces what came before it (docs/compatibility.md)
        return append_block(holder, digits, atom_getobj(atom));
    default:
        return 0;
    }
}

// The atoms' bytes as digits; anything but 0 has been reported.
static long gather_digits(t_jxmlfile *holder, byte_buffer *digits, long argc, const t_atom *argv) {
    long failure = append_digits(holder, digits, "");
    for (long i = 0; i < argc && !failure; ++i)
        failure = append_data(holder, digits, argv + i);
    return failure;
}

// Reports a text that libxml2 has not stored.
static long text_error(const t_jxmlfile *holder, std::string_view text) {
    constexpr size_t shown = 1000; // more has no room on a console line
    object_error(holder->owner, "unable to create text data %.*s (err %ld)",
                 static_cast<int>(vrk_whole_characters(text, shown)), text.data(), -1L);
    return -1;
}

// Makes a text the only content of an element; an empty one leaves the element empty, as it would be read from a file.
// The text goes in as a node: xmlNodeSetContent would take "&" for a reference.
static long store_text(t_jxmlfile *holder, xmlNodePtr element, const char *text) {
    xml_node node(*text ? xmlNewDocText(holder->doc, as_xml(text)) : nullptr);
    if (*text && (!node || !node->content))
        return text_error(holder, text);
    if (element->children) {
        jxml_index_emptied(holder->index, element);
        xmlNodeSetContent(element, nullptr);
    }
    if (node)
        xmlAddChild(element, node.release());
    return 0;
}

// Puts a CDATA section in the place of an element's first child.
static long store_cdata(t_jxmlfile *holder, xmlNodePtr element, const byte_buffer &digits) {
    xml_node node(xmlNewCDataBlock(holder->doc, as_xml(digits.bytes.get()), static_cast<int>(digits.length)));
    if (!node || !node->content)
        return cdata_error(holder, digits.bytes.get());
    jxml_index_emptied(holder->index, element);
    if (element->children)
        node.reset(xmlReplaceNode(element->children, node.release()));
    else
        xmlAddChild(element, node.release());
    return 0;
}

long jxmlfile_delete(t_jxmlfile *holder, long argc, t_atom *argv, char verbose) {
    if (const long refusal = availability(holder))
        return refusal;
    xmlNodePtr element = nullptr;
    if (const long failure = get_node_to_change(holder, &argc, &argv, &element, verbose))
        return failure;
    jxml_index_removed(holder->index, element);
    discard(element);
    return 0;
}

// ---- attributes

long jxmlfile_getattr(t_jxmlfile *holder, long argc, t_atom *argv, t_symbol *value_kind, short *, t_atom **result,
                      char verbose) {
    if (const long refusal = availability(holder))
        return refusal;
    if (argc < 1 || !result || !*result)
        return -2;
    long path_count = argc - 1;
    xmlNodePtr element = nullptr;
    if (const long failure = jxmlfile_get_node(holder, &path_count, &argv, &element, verbose))
        return failure;
    if (atom_gettype(argv) != A_SYM)
        return -1;
    const char *name = atom_getsym(argv)->s_name;
    const xml_text value(xmlGetProp(element, as_xml(name)));
    if (!value) {
        if (verbose)
            object_warn(holder->owner, "wrong argument: can't find attr %s", name);
        return -2;
    }
    set_value(*result, value_kind, as_text(value.get()));
    return 0;
}

// Whether the name of an attribute is a namespace declaration that the element has already, as "xmlns:p".
static bool is_declared(const xmlNode *element, const char *name) {
    if (std::strncmp(name, "xmlns", 5) != 0)
        return false;
    for (const xmlNs *declared = element->nsDef; declared; declared = declared->next) {
        const bool same = declared->prefix ? name[5] == ':' && std::strcmp(name + 6, as_text(declared->prefix)) == 0
                                           : name[5] == '\0';
        if (same)
            return true;
    }
    return false;
}

// The bytes that a text takes in a written attribute, in the longest form that libxml2 chooses.
static size_t written_length(const char *text) {
    size_t length = 0;
    for (; *text; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        if (byte >= 0xC0)
            length += sizeof "&#x10FFFF;" - 1; // for the whole character
        else if (std::strchr("<>&\"\n\r\t", byte))
            length += sizeof "&quot;" - 1;
        else if (byte < 0x80)
            length += 1;
    }
    return length;
}

// The bytes that an element's attributes take in its written start tag, without the one of the given name.
static size_t attributes_length(const xmlNode *element, const char *without) {
    size_t length = 0;
    for (const xmlAttr *attribute = element->properties; attribute; attribute = attribute->next) {
        if (std::strcmp(as_text(attribute->name), without) == 0)
            continue;
        length += std::strlen(as_text(attribute->name)) + 4; // ' name=""'
        for (const xmlNode *part = attribute->children; part; part = part->next)
            length += part->type == XML_ENTITY_REF_NODE ? std::strlen(as_text(part->name)) + 2
                                                        : written_length(part->content ? as_text(part->content) : "");
    }
    return length;
}

// The attributes and namespaces in an element's start tag.
static long attribute_count(const xmlNode *element) {
    long count = 0;
    for (const xmlAttr *attribute = element->properties; attribute; attribute = attribute->next)
        ++count;
    for (const xmlNs *declared = element->nsDef; declared; declared = declared->next)
        ++count;
    return count;
}

// Whether an attribute can be set so that the file can be read again; says why not.
static bool can_hold_attribute(t_jxmlfile *holder, xmlNode *element, const char *name, const char *value) {
    if (!is_xml_name(name) || is_declared(element, name)) {
        object_error(holder->owner, "\"%s\" cannot name an attribute", name);
        return false;
    }
    if (!can_hold_text(holder, value, std::strlen(value)))
        return false;
    if (!xmlHasProp(element, as_xml(name)) && attribute_count(element) >= JXML_ATTRIBUTE_LIMIT) {
        object_error(holder->owner, "attributes are too many for xml (more than %ld)", JXML_ATTRIBUTE_LIMIT);
        return false;
    }
    if (attributes_length(element, name) + written_length(value) > START_TAG_LIMIT) {
        object_error(holder->owner, "attributes are too long for xml (more than %ld bytes)",
                     static_cast<long>(START_TAG_LIMIT));
        return false;
    }
    return true;
}

// ---- setting

// Sets an attribute where it stands.
static long store_attribute(t_jxmlfile *holder, const xmlAttr *attribute, const char *value) {
    xmlNodePtr element = attribute->parent;
    const char *name = as_text(attribute->name);
    if (!can_hold_attribute(holder, element, name, value))
        return -1;
    jxml_index_attribute_lost(holder->index, element, name);
    const bool is_set = is_whole(xmlSetNsProp(element, attribute->ns, attribute->name, as_xml(value)), value);
    jxml_index_attribute_set(holder->index, element, name);
    return is_set ? 0 : text_error(holder, value);
}

// The place in a text from which on it would read back otherwise as the content of a comment, an instruction or a CDATA
// section; null when there is none. Nothing is escaped in them: a carriage return reads back as a line feed, and some
// texts end them. The blanks before an instruction's content are not part of it.
static const char *place_that_is_lost(const xmlNode *node, const char *text) {
    const size_t length = std::strlen(text);
    const char *end = nullptr;
    if (node->type == XML_PI_NODE)
        end = std::strchr(" \t\n", *text) && *text ? text : std::strstr(text, "?>");
    else if (node->type == XML_COMMENT_NODE)
        end = std::strstr(text, "--");
    if (!end && node->type == XML_COMMENT_NODE && length > 0 && text[length - 1] == '-')
        end = text + length - 1;
    const char *line_end = node->type == XML_TEXT_NODE ? nullptr : std::strchr(text, '\r');
    return end && (!line_end || end < line_end) ? end : line_end;
}

// Makes a text the only content of a node of any kind.
static long store_content(t_jxmlfile *holder, xmlNodePtr node, const char *text) {
    if (node->type == XML_ELEMENT_NODE)
        return store_text(holder, node, text);
    if (node->type == XML_ATTRIBUTE_NODE)
        return store_attribute(holder, reinterpret_cast<const xmlAttr *>(node), text);
    if (const char *place = place_that_is_lost(node, text))
        return unholdable_error(holder, place - text);
    if (node->type == XML_TEXT_NODE && !*text) { // it would not be there when the document is read again
        discard(node);
        return 0;
    }
    xmlNodeSetContent(node, as_xml(text));
    return node->content ? 0 : text_error(holder, text);
}

// The index of the atom that ends the path, "text" or "cdata"; argc when there is none.
static long find_keyword(long argc, const t_atom *argv) {
    const keyword_symbols &words = keywords();
    const auto is_keyword = [&words](const t_symbol *word) { return word == words.text || word == words.cdata; };
    long i = 0;
    while (i < argc && !is_keyword(atom_getsym(argv + i)))
        ++i;
    return i;
}

long jxmlfile_set(t_jxmlfile *holder, long argc, t_atom *argv, char verbose) {
    long path_count = find_keyword(argc, argv);
    const bool has_keyword = path_count < argc;
    const bool as_cdata = has_keyword && atom_getsym(argv + path_count) == keywords().cdata;
    const t_atom *data = has_keyword ? argv + path_count + 1 : nullptr;
    const long data_count = has_keyword ? argc - path_count - 1 : 0;
    const owned_blocks blocks(as_cdata ? data_count : 0, data);
    if (const long refusal = availability(holder))
        return refusal;
    if (!has_keyword)
        return -2;
    byte_buffer buffer; // filled before the path is walked, so that nothing is made for what cannot be stored
    const char *text = nullptr;
    if (const long failure = as_cdata ? gather_digits(holder, &buffer, data_count, data)
                                      : gather_text(holder, &buffer, data_count, data, &text))
        return failure;
    xmlNodePtr node = nullptr;
    if (const long failure = jxmlfile_set_node(holder, &path_count, &argv, &node, verbose))
        return failure;
    if (!node)
        return 0; // the document has another root, and no second one is made
    if (!as_cdata)
        return store_content(holder, node, text);
    return node->type == XML_ELEMENT_NODE ? store_cdata(holder, node, buffer)
                                          : node_warning(holder, "invalid node at given path", verbose);
}

// ---- setting and removing attributes

// Reports a name that is no symbol.
static long name_error(t_jxmlfile *holder, const t_atom *name) {
    if (atom_gettype(name) == A_FLOAT)
        object_error(holder->owner, "can't set attribute %f", static_cast<double>(atom_getfloat(name)));
    else
        object_error(holder->owner, "can't set attribute %ld", static_cast<long>(atom_getlong(name)));
    return -2;
}

long jxmlfile_setattr(t_jxmlfile *holder, long argc, t_atom *argv, char verbose) {
    if (const long refusal = availability(holder))
        return refusal;
    if (argc < 2)
        return -2;
    long path_count = argc - 2;
    xmlNodePtr element = nullptr;
    if (const long failure = get_node_to_change(holder, &path_count, &argv, &element, verbose))
        return failure;
    if (atom_gettype(argv) != A_SYM)
        return name_error(holder, argv);
    char number[NUMBER_SIZE];
    const char *name = atom_getsym(argv)->s_name;
    const char *value = atom_gettype(argv + 1) == A_SYM ? atom_getsym(argv + 1)->s_name : number_text(argv + 1, number);
    if (!can_hold_attribute(holder, element, name, value))
        return -1;
    jxml_index_attribute_lost(holder->index, element, name);
    // xmlSetProp makes the attribute as well, and finds one that has a prefix where xmlNewProp would make a second.
    const bool is_set = is_whole(xmlSetProp(element, as_xml(name), as_xml(value)), value);
    jxml_index_attribute_set(holder->index, element, name);
    if (is_set)
        return 0;
    if (verbose)
        object_warn(holder->owner, "unable to set attribute %s to %s", name, value);
    return -1;
}

long jxmlfile_deleteattr(t_jxmlfile *holder, long argc, t_atom *argv, char verbose) {
    if (const long refusal = availability(holder))
        return refusal;
    if (argc < 1)
        return -1;
    long path_count = argc - 1;
    xmlNodePtr element = nullptr;
    if (const long failure = get_node_to_change(holder, &path_count, &argv, &element, verbose))
        return failure;
    if (atom_gettype(argv) != A_SYM)
        return -1;
    jxml_index_attribute_lost(holder->index, element, atom_getsym(argv)->s_name);
    xmlUnsetProp(element, as_xml(atom_getsym(argv)->s_name)); // releases it; it need not be there
    return 0;
}

// ---- text editor

void jxmlfile_open(t_jxmlfile *holder) { jxmlfile_openeditor(holder); }

xml_text jxmlfile_editor_text(const t_jxmlfile *holder) {
    const quiet_libxml quiet;
    xmlDocPtr document = holder ? holder->doc : nullptr;
    xmlChar *text = nullptr;
    int size = 0;
    if (document && document->encoding)
        xmlDocDumpFormatMemoryEnc(document, &text, &size, "UTF-8", 1);
    else if (document)
        xmlDocDumpFormatMemory(document, &text, &size, 1);
    return xml_text(text);
}

void jxmlfile_openeditor(t_jxmlfile *holder) {
    if (!holder)
        return;
    if (holder->editor) {
        object_attr_setchar(holder->editor, gensym("visible"), 1);
        return;
    }
    holder->editor = static_cast<t_object *>(object_new(CLASS_NOBOX, gensym("jed"), holder->owner, 0));
    if (!holder->editor)
        return;
    vrk_set_editorfile_from_pathname(holder->editor, holder->file_path);
    if (const xml_text text = jxmlfile_editor_text(holder))
        object_method(holder->editor, gensym("settext"), text.get(), gensym("utf-8"));
}

// Queues the writing of a document to the file that its editor was saved as, the current one without a name.
static void write_edited(t_jxmlfile *holder, const char *filename, short path_id) {
    char path[MAX_PATH_CHARS] = "";
    if (!filename)
        jxmlfile_writeagain(holder);
    else if (path_topotentialname(path_id, filename, path, 0) == 0)
        jxmlfile_write(holder, gensym(path));
    else
        not_found(holder, filename);
}

long jxmlfile_edsave(t_jxmlfile *holder, char **text, long size, const char *filename, short path_id) {
    if (!holder)
        return 1;
    if (filename && !*filename)
        filename = nullptr;
    const char *bytes = text ? *text : nullptr;
    const long most = std::min<long>(size, INT_MAX); // libxml2 counts no more; a document that is cut does not parse
    const size_t length = bytes && size > 0 ? strnlen(bytes, static_cast<size_t>(most)) : 0;
    const char *name = filename ? filename : holder->write_path ? holder->write_path->s_name : "";
    jxml_text edited;
    xml_doc document;
    if (jxml_look_through(holder->owner, std::string_view(bytes, length), name, &edited))
        document = jxml_parse(holder->owner, edited, name, filename);
    if (!document)
        return -1; // what was held stays, and its file is not overwritten with it
    replace_document(holder, std::move(document));
    write_edited(holder, filename, path_id);
    return 1;
}

void jxmlfile_edclose(t_jxmlfile *holder, char **, long) {
    if (holder)
        holder->editor = nullptr;
}

// ---- printing

static void print_opening(const xmlNode *element) {
    char buffer[TAG_LINE_SIZE] = "";
    bounded_text line = {buffer, sizeof buffer, 0, true};
    append(&line, "\n<");
    append(&line, as_text(element->name));
    for (const xmlAttr *attribute = element->properties; attribute; attribute = attribute->next) {
        const xmlNode *value = attribute->children;
        append(&line, " ");
        append(&line, as_text(attribute->name));
        append(&line, "=\"");
        append(&line, value && value->content ? as_text(value->content) : "");
        append(&line, "\"");
    }
    object_post(nullptr, "%s>", line.text);
}

static void print_closing(const xmlNode *element) { object_post(nullptr, "\n</%s>", as_text(element->name)); }

// Walks without recursion, so that no document is too deep. Only elements are entered: an entity reference leads to
// the declarations.
void jxmlfile_print_element_names(xmlNodePtr first) {
    int depth = 0;
    for (const xmlNode *node = first; node;) {
        const bool is_element = node->type == XML_ELEMENT_NODE;
        if (is_element)
            print_opening(node);
        if (is_element && node->children) {
            ++depth;
            node = node->children;
            continue;
        }
        if (is_element)
            print_closing(node);
        for (; depth > 0 && !node->next; --depth) {
            node = node->parent;
            print_closing(node);
        }
        node = node->next;
    }
}

void jxmlfile_print(t_jxmlfile *holder) {
    const xmlNode *root = holder && holder->doc ? xmlDocGetRootElement(holder->doc) : nullptr;
    if (!root)
        return;
    object_post(nullptr, "<%s>", as_text(root->name));
    jxmlfile_print_element_names(root->children);
    object_post(nullptr, "\n<%s>", as_text(root->name)); // without a slash (docs/compatibility.md)
}

void jxmlfile_bang(t_jxmlfile *holder) {
    if (holder)
        qelem_set(holder->read_qelem);
}
