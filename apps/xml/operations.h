// The operations of vrk-xml on a document: what the modules do, with words in and text out.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "document.h"

// One operation: its name, its options and its atoms.
struct Operation {
    std::string name;
    std::vector<t_atom> atoms;
    std::string as = "text"; // kind of value that "get" and "getattr" read: int, float or text
    short bytes = 1;         // room for the bytes of a CDATA section; one alone takes them all
    std::string out;         // file that the value is written to
    std::string data_file;   // file that the content is taken from
};

// A word of the command line: a number where it reads as one, else a symbol.
t_atom atom_of(const std::string &word);

// The XPath expression of a path.
std::string expression_of(std::vector<t_atom> path);

// The operation of a line of a batch: its name, options, and atoms as typed in a message, where double quotes make
// symbols. Throws Refused for an unknown option.
Operation parse_operation(const std::string &line);

// Carries it out and answers what there is to print, lines with their line feeds; sets `changed` when it changes the
// document. Throws Refused.
std::string run_operation(Document &document, const Operation &operation);
