// Folders: the search path, the folder that new files go to, and the ids that name folders.
#pragma once

#include <string>
#include <vector>

#include "kernel/export.h"

namespace maxhost {

// The folders that files are searched in, in order; behind them come the patcher's folder and the current one.
MAXHOST_EMBED void set_search_folders(std::vector<std::string> folders);

// The folder of the patcher that is open; empty while it has none.
MAXHOST_EMBED void set_patcher_folder(const std::string &folder);

// Where a bare file name is written: the patcher's folder, else the current one. A full path.
std::string default_folder();

// The full path of a regular file in the search path, or of one that is named by its full path; empty when there is
// none.
std::string find_in_search_path(const std::string &file);

// The id of a folder that exists, the same for the same folder; 0 when it does not exist or no id is left.
MAXHOST_EMBED short folder_id(const std::string &folder);

// The full path of `file` in the folder `id` (0: the default folder); empty when the id names none.
std::string path_in_folder(short id, const std::string &file);

// Error numbers of the file calls, the classic ones of the platform.
enum FileError : short {
    err_io = -36,
    err_bad_name = -37,
    err_not_found = -43,
    err_exists = -48,
    err_permission = -54,
    err_cancelled = -128
};

// The error number for the errno of a failed system call.
short file_error();

} // namespace maxhost
