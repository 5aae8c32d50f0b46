// The two writers of whole files, the host's and the plug-in's, which promise the same.
#pragma once

#include <cstring>
#include <ostream>
#include <string>

#include "files/wholefile.h"
#include "vrk.wholefile.h"

// Writes a file; the reason when that fails, else nothing.
struct FileWriter {
    const char *name;
    std::string (*write)(const std::string &path, const std::string &content);
};

inline const FileWriter file_writers[] = {
    {"Host",
     [](const std::string &path, const std::string &content) {
         std::string reason;
         return maxhost::replace_whole_file(path, content, reason) ? "" : reason;
     }},
    {"PlugIn",
     [](const std::string &path, const std::string &content) -> std::string {
         const int result = vrk_replace_file(path.c_str(), content.data(), content.size());
         return result == 0 ? "" : std::strerror(-result);
     }},
};

inline void PrintTo(const FileWriter &writer, std::ostream *out) { *out << writer.name; }
