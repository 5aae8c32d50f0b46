// Texts of XML files as documents: within bounds, or refused with a line that says why.
#pragma once

#include "vrk.jxml-encoding.h"

// A text that may be parsed.
struct jxml_text {
    jxml_decoded decoded;
    std::string_view seen; // of decoded.text, as far as it has been looked through
    long parameter_words;  // that parameter entities may expand to
};

// Looks the bytes of a file through before libxml2 sees them. False when they are beyond a bound, which has been
// reported with their `name`. Any thread.
bool jxml_look_through(t_object *owner, std::string_view bytes, const char *name, jxml_text *out);

// The document of a text. Blanks between elements are dropped, and entities are neither replaced nor loaded. `url` is
// where the text comes from, or null. Null when it is malformed, which is not reported but stands in
// xmlGetLastError(), or beyond a bound, which is reported. Any thread.
xml_doc jxml_parse(t_object *owner, const jxml_text &text, const char *name, const char *url);
