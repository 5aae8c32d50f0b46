// Texts in any encoding that libxml2 knows, as UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "vrk.jxml-bounds.h"
#include "vrk.owners.h"

using xml_encoder = std::unique_ptr<xmlCharEncodingHandler, Releaser<xmlCharEncCloseFunc>>;

// What converts between an encoding and UTF-8; null when libxml2 does not know its name, or when memory runs out. Any
// thread.
xml_encoder jxml_find_encoder(const char *name);

// A text of an XML file in UTF-8. It stays where it is: `text` can be a view of `converted`.
struct jxml_decoded {
    jxml_decoded() = default;
    jxml_decoded(const jxml_decoded &) = delete;
    jxml_decoded &operator=(const jxml_decoded &) = delete;

    std::string_view text;
    std::string converted; // empty when the bytes are UTF-8 as they are
    std::string encoding;  // as the XML declaration names it; empty when it names none
};

// Reads the bytes in the encoding that libxml2 would read them in: that of their byte order mark or first character,
// and from the name of an encoding in the XML declaration on in the named one. The text ends at the first byte that
// the encoding has no character for. Refused is an encoding that libxml2 does not know, and one that the bytes cannot
// have. out->text shows the caller's bytes when they are UTF-8 already. Any thread.
jxml_refusal jxml_decode(std::string_view bytes, jxml_decoded *out);
