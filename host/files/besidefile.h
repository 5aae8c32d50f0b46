// The hidden file beside another that takes its place when it is whole.
#pragma once

#include <sys/types.h>

#include <string>

#include "files/descriptor.h"

namespace maxhost {

// Its name is ".NAME.vrk-PROCESS-NUMBER", NAME being cut when it is long. While it is written it is locked, and the
// lock ends with the program: one that can be locked was left behind. Functions answer 0, or the error number (errno)
// of what failed.
class BesideFile {
  public:
    // For the file at a path without links.
    explicit BesideFile(std::string path);
    ~BesideFile(); // removes it, unless it has taken the place
    BesideFile(const BesideFile &) = delete;
    BesideFile &operator=(const BesideFile &) = delete;

    // Removes those that have been left behind for the same file.
    void remove_strays() const;

    // Makes it, open and empty. The user's mask is taken off the permissions.
    int make(mode_t permissions);

    // Gives it the owner, the group, the extended attributes and the access lists of the file that is there.
    int take_over();

    // Puts it in the place of the file.
    int put_in_place();

    int descriptor() const { return file_; }
    const std::string &folder() const { return folder_; } // ends with a slash, or is empty

  private:
    std::string path_, folder_, stem_;
    std::string name_; // its full path while it is there
    Descriptor file_;
};

} // namespace maxhost
