// Whole files: read at once, replaced at once.
#pragma once

#include <string>

#include "files/filestamp.h"

namespace maxhost {

// Reads a regular file. False with the reason when it cannot be read.
bool read_whole_file(const std::string &path, std::string &content, std::string &reason);

// Makes a file, or puts other content in the place of the one that is there. False with the reason, "No space left on
// device" for example, when that fails. `written`, if given, becomes the stamp of the file that was written. Main
// thread.
//
// The content goes to a hidden file beside it (besidefile.h), is forced to the disk and renamed, and the folder is
// forced to the disk: after a crash or a power cut the file is the old one or the new one, whole. It keeps its
// permissions, owner, group, extended attributes and access lists; a link stays a link, and one that leads nowhere has
// the file made that it names. Hidden files whose writers have been killed are removed by the next call for the same
// file. Signals that end the program wait until the file is there.
//
// Where a rename would make another file of it (it has several names, another owner or mount, a folder in which nothing
// may be made), the file is written in place: first what is longer than before, so that a full disk is noticed while
// the old content is there. A pipe and a character device get the content as well; a pipe that nobody reads, or whose
// reader takes nothing for some seconds, is a failure. Anything else is refused.
//
// After a failure the file is as it was, unless writing in place broke off, or the folder could not be forced to the
// disk: then the new content is there, but may not outlast a power cut.
MAXHOST_EMBED bool replace_whole_file(const std::string &path, const std::string &content, std::string &reason,
                                      FileStamp *written = nullptr);

} // namespace maxhost
