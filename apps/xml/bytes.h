// Files of bytes: content that goes into a document, and values that come out of it.
#pragma once

#include <span>
#include <string>

// The bytes of a file, as many of them as the layer needs for refusing them. A pipe that nobody writes to is refused,
// and not waited for. Throws Refused with the reason.
std::string content_of(const std::string &file);

// Writes a file whole, as replace_whole_file does. Throws Refused with the reason.
void write_bytes(const std::string &file, std::span<const char> bytes);
