// Floats as text, with a decimal point whatever locale the program has set.
#pragma once

#include <cstddef>

// Prints as "%f" does, with a terminating zero; what has no room in the `size` bytes is left out.
void vrk_print_float(double value, char *buffer, size_t size);

// Reads as strtod does: a text that is no number is 0.
double vrk_read_float(const char *text);
