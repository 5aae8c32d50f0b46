// Documents as tests compare them.
#pragma once

#include <string>

#include <libxml/tree.h>

// The text of a document without its declaration and the line ends behind it; "none" without a document.
std::string document_text(xmlDocPtr document);
