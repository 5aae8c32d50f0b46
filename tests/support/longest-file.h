// A disk without room, for tests: no file of the process may become longer until the scope ends.
#pragma once

#include <sys/resource.h>

class LongestFile {
  public:
    explicit LongestFile(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit now = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &now);
    }
    ~LongestFile() { setrlimit(RLIMIT_FSIZE, &before_); }
    LongestFile(const LongestFile &) = delete;
    LongestFile &operator=(const LongestFile &) = delete;

  private:
    rlimit before_;
};
