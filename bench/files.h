// Resource files of generated items, for the benchmarks.
#pragma once

#include <string>

// A temporary file with `count` resources, numbered from 0; removed with the object.
class ResourceFile {
  public:
    enum class Kind { text, image };

    ResourceFile(Kind kind, long count);
    ~ResourceFile();
    ResourceFile(const ResourceFile &) = delete;
    ResourceFile &operator=(const ResourceFile &) = delete;

    const std::string &path() const { return path_; }

  private:
    std::string path_;
};
