// Whole files: read at once, replaced at once.
#pragma once

#include <string>

#include "files/filestamp.h"

namespace maxhost {

// Reads a regular file. False with the reason when it cannot be read.
bool read_whole_file(const std::string &path, std::string &content, std::string &reason);

// Makes a file, or puts other content in the place of the one that is there, whose permissions it keeps: it is written
// beside it and renamed. False with the reason when that fails; the file is then as it was. `written`, if
// given, becomes the stamp of the file that was written.
MAXHOST_EMBED bool replace_whole_file(const std::string &path, const std::string &content, std::string &reason,
                                      FileStamp *written = nullptr);

} // namespace maxhost
