// What the programs on the host have in common: their plug-ins, and the files that their command lines name.
#pragma once

#include <string>
#include <vector>

// Loads plug-ins; without any, the one that is built beside the program. False with a reason when one cannot be loaded.
bool load_plugins(std::vector<std::string> files, std::string &reason);

// A program or module beside this one; its full path.
std::string beside_this_program(const std::string &name);

// A file as the host is to look for it: one of that name in the current folder goes before those in the search path.
std::string in_current_folder(const std::string &name);
