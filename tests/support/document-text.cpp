// Documents as tests compare them.
#include "support/document-text.h"

#include "vrk.owners.h"

std::string document_text(xmlDocPtr document) {
    if (!document)
        return "none";
    xmlChar *dumped = nullptr;
    int size = 0;
    xmlDocDumpMemory(document, &dumped, &size);
    const xml_text owned(dumped);
    std::string text(reinterpret_cast<const char *>(dumped), static_cast<size_t>(size));
    text.erase(0, text.find('\n') + 1);
    while (text.ends_with('\n'))
        text.pop_back();
    return text;
}
