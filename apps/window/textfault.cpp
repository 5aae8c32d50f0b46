// What is wrong with a text that was to be XML.
#include "textfault.h"

#include <libxml/xmlerror.h>

void forget_text_fault() { xmlResetLastError(); }

TextFault last_text_fault() {
    const auto *error = xmlGetLastError();
    if (!error || error->domain != XML_FROM_PARSER)
        return {};
    return {error->line, error->int2, QString::fromUtf8(error->message).trimmed()};
}
