// Peak memory of reading a file, beside that of its document alone.
#pragma once

// The part of the program that is run on its own: "--peak read|parse|nothing FILE". True when the arguments ask for it.
bool run_memory_part(int argc, char **argv);

// Prints the ratio. `program` is this program.
void print_memory_ratio(const char *program);
