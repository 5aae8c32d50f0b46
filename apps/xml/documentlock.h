// The lock by which programs that edit one file wait for each other.
#pragma once

#include <string>

// Held from before a file is read until after it is saved. It is an advisory lock (flock) on the file itself: nothing
// is left beside it, and it ends with the program, however that ends. A file that is not there, or whose file system
// has no locks, is not locked.
class DocumentLock {
  public:
    // Waits until nobody else has the file locked. A save renames another file to the path; then that one is locked.
    explicit DocumentLock(const std::string &file);
    ~DocumentLock();
    DocumentLock(const DocumentLock &) = delete;
    DocumentLock &operator=(const DocumentLock &) = delete;

  private:
    int descriptor_;
};
