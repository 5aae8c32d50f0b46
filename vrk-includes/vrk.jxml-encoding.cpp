// Texts in any encoding that libxml2 knows, as UTF-8.
#include "vrk.jxml-encoding.h"

#include <new>

namespace {

constexpr int PIECE_SIZE = 16 * 1024; // bytes that are converted at once

const xmlChar *as_xml(const char *text) { return reinterpret_cast<const xmlChar *>(text); }
const char *as_text(const xmlChar *text) { return reinterpret_cast<const char *>(text); }

using xml_buffer = std::unique_ptr<xmlBuffer, Releaser<xmlBufferFree>>;

constexpr jxml_refusal unknown_encoding = {"the encoding of %s is not supported", 0};
constexpr jxml_refusal wrong_encoding = {"%s is not in the encoding that it declares", 0};

// When memory runs out, libxml2 2.9 leaves the name of a converter away, without which it never releases it.
xml_encoder with_name(xmlCharEncodingHandlerPtr found, xml_text name) {
    if (found && !found->name)
        found->name = reinterpret_cast<char *>(name.release());
    return xml_encoder(found);
}

// Whether libxml2 has its table of encodings. While memory is too short for it, 2.9 hands out encoders that it has
// freed with an earlier one.
bool has_encodings() {
    xmlInitParser(); // or xmlCleanupParser leaves the table behind
    xml_text name(xmlStrdup(as_xml("UTF-8")));
    return name && with_name(xmlFindCharEncodingHandler("UTF-8"), std::move(name));
}

// ---- which encoding

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool equals(const std::string &name, const char *other) {
    return xmlStrcasecmp(as_xml(name.c_str()), as_xml(other)) == 0;
}
bool is_utf8(const std::string &name) { return equals(name, "UTF-8") || equals(name, "UTF8"); }
bool is_utf16(const std::string &name) { return equals(name, "UTF-16") || equals(name, "UTF16"); }

// What the first bytes of a text tell about its encoding.
struct detection {
    xmlCharEncoding encoding; // of the converter; XML_CHAR_ENCODING_NONE when the bytes of "<" and the like are ASCII
    size_t mark;              // bytes of the byte order mark
    size_t unit;              // bytes of an ASCII character
};

detection detect(std::string_view bytes) {
    const auto *start = reinterpret_cast<const unsigned char *>(bytes.data());
    const xmlCharEncoding encoding = bytes.size() < 4 ? XML_CHAR_ENCODING_NONE : xmlDetectCharEncoding(start, 4);
    switch (encoding) {
    case XML_CHAR_ENCODING_NONE:
    case XML_CHAR_ENCODING_UTF8:
        return {XML_CHAR_ENCODING_NONE, 0, 1};
    case XML_CHAR_ENCODING_UTF16LE:
    case XML_CHAR_ENCODING_UTF16BE:
        return {encoding, bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF") ? size_t{2} : 0, 2};
    case XML_CHAR_ENCODING_EBCDIC:
        return {encoding, 0, 1};
    default:
        return {encoding, 0, 4};
    }
}

void skip_blanks(std::string_view *text) {
    while (!text->empty() && is_blank(text->front()))
        text->remove_prefix(1);
}

// Takes NAME = "VALUE" off the beginning of a text; empty when something else stands there. The value is left out of
// `text` with its closing quote.
std::string_view take_value(std::string_view *text, std::string_view name) {
    std::string_view rest = *text;
    skip_blanks(&rest);
    if (!rest.starts_with(name))
        return {};
    rest.remove_prefix(name.size());
    skip_blanks(&rest);
    if (!rest.starts_with('='))
        return {};
    rest.remove_prefix(1);
    skip_blanks(&rest);
    const size_t end = rest.starts_with('"') || rest.starts_with('\'') ? rest.find(rest[0], 1) : rest.npos;
    if (end == rest.npos)
        return {};
    *text = rest.substr(end + 1);
    return rest.substr(1, end - 1);
}

bool can_name_an_encoding(std::string_view name) {
    if (name.empty() || !is_letter(name[0]))
        return false;
    for (const char c : name)
        if (!is_letter(c) && !is_digit(c) && c != '.' && c != '_' && c != '-')
            return false;
    return true;
}

// The encoding that the XML declaration of a text names, and what stands after it. Empty when it names none, or when it
// is broken: the parser will say so.
std::string_view declared_encoding(std::string_view text, std::string_view *after) {
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    if (!text.starts_with("<?xml") || text.size() < 6 || !is_blank(text[5]))
        return {};
    text.remove_prefix(5);
    take_value(&text, "version");
    const std::string_view name = take_value(&text, "encoding");
    *after = text;
    return can_name_an_encoding(name) ? name : std::string_view();
}

// ---- conversion

// Appends bytes in UTF-8, up to the first that the encoding has no character for.
void append_converted(std::string &text, xmlCharEncodingHandler *encoder, std::string_view bytes) {
    const xml_buffer in(xmlBufferCreateSize(2 * PIECE_SIZE)), out(xmlBufferCreateSize(8 * PIECE_SIZE));
    if (!in || !out)
        throw std::bad_alloc();
    bool goes_on = true;
    while (goes_on) {
        const int former = xmlBufferLength(in.get()); // half a character, until the other half comes
        const std::string_view piece = bytes.substr(0, former < PIECE_SIZE ? PIECE_SIZE : 0);
        bytes.remove_prefix(piece.size());
        const xmlChar *start = as_xml(piece.data());
        if (xmlBufferAdd(in.get(), start, static_cast<int>(piece.size())) != 0)
            throw std::bad_alloc();
        const int result = xmlCharEncInFunc(encoder, out.get(), in.get());
        text.append(as_text(xmlBufferContent(out.get())), static_cast<size_t>(xmlBufferLength(out.get())));
        xmlBufferEmpty(out.get());
        goes_on = result >= 0 && (!piece.empty() || xmlBufferLength(in.get()) < former);
    }
}

jxml_refusal decode(std::string_view bytes, jxml_decoded *out) {
    const detection detected = detect(bytes);
    const std::string_view unmarked = bytes.substr(detected.mark);
    out->text = bytes;
    if (detected.encoding != XML_CHAR_ENCODING_NONE) {
        xml_text name(xmlStrdup(as_xml("of the document"))); // while there is memory
        const xml_encoder encoder = with_name(xmlGetCharEncodingHandler(detected.encoding), std::move(name));
        if (!encoder)
            return unknown_encoding;
        append_converted(out->converted, encoder.get(), unmarked);
        out->text = out->converted;
    }
    std::string_view after;
    out->encoding = declared_encoding(out->text, &after);
    if (out->encoding.empty() || is_utf8(out->encoding))
        return {nullptr, 0};
    if (is_utf16(out->encoding))
        return detected.unit == 1 ? wrong_encoding : jxml_refusal{nullptr, 0};
    const xml_encoder encoder = jxml_find_encoder(out->encoding.c_str());
    if (!encoder)
        return unknown_encoding;
    const size_t head = out->text.size() - after.size();
    std::string whole(out->text.substr(0, head));
    append_converted(whole, encoder.get(), unmarked.substr(std::min(head * detected.unit, unmarked.size())));
    out->converted = std::move(whole);
    out->text = out->converted;
    return {nullptr, 0};
}

} // namespace

xml_encoder jxml_find_encoder(const char *name) {
    xml_text copy(has_encodings() ? xmlStrdup(as_xml(name)) : nullptr);
    return copy ? with_name(xmlFindCharEncodingHandler(name), std::move(copy)) : nullptr;
}

jxml_refusal jxml_decode(std::string_view bytes, jxml_decoded *out) {
    constexpr jxml_refusal out_of_memory = {"out of memory for %s", 0};
    const quiet_libxml quiet;
    if (!has_encodings())
        return out_of_memory;
    try {
        const jxml_refusal refusal = decode(bytes, out);
        return quiet.out_of_memory() ? out_of_memory : refusal;
    } catch (const std::bad_alloc &) {
        return out_of_memory;
    }
}
