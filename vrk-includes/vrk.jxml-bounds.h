// What reading an XML text would cost, told from its characters before libxml2 sees it.
//
// A file of a few megabytes can keep libxml2 busy for hours, or fill the memory: it compares every attribute of a tag
// with the others and with those that the document type has defaults for, every namespace that is looked up with those
// that are in scope, every word of an enumeration with the ones before. The bounds below are far beyond what resource
// files hold. With them a text of 64 megabytes is read in seconds and takes about a gigabyte, or is refused.
#pragma once

#include <cstddef>
#include <string_view>

constexpr long JXML_ATTRIBUTE_LIMIT = 1000;           // attributes and namespaces of one tag
constexpr long JXML_PIECE_LIMIT = 2'000'000;          // tags, attributes, references, comments and the like
constexpr long JXML_WORD_LIMIT = 20'000;              // words of a document type, texts in quotes included
constexpr long JXML_PARAMETER_LIMIT = 10'000;         // words that parameter entities expand to, where they are used
constexpr long JXML_ID_LIMIT = 100'000;               // attributes that could be identifiers
constexpr long JXML_COMPARISON_LIMIT = 2'000'000'000; // of attributes and namespaces with each other
constexpr unsigned long JXML_NAME_BYTES = 1'000'000;  // of all different names and short texts

// Why a text is not to be read: a format for its name and for the limit. A null format: it can be read.
struct jxml_refusal {
    const char *format;
    long limit;
};

struct jxml_bounds {
    jxml_refusal refusal;
    long parameter_words; // that parameter entities may expand to, which shows only while the text is parsed
};

// Looks through a text in UTF-8, in time and memory proportional to its size. The text is cut after the first place
// where every parser has to give up, as what libxml2 finds after it has not been looked at. Any thread.
jxml_bounds jxml_bounds_check(std::string_view *text);
