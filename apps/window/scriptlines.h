// The lines of a script, taken as they come: whoever writes them may take his time.
#pragma once

#include <optional>
#include <string>

class ScriptLines {
  public:
    ScriptLines() = default;
    ~ScriptLines();
    ScriptLines(const ScriptLines &) = delete;
    ScriptLines &operator=(const ScriptLines &) = delete;

    // Takes a file ("-": standard input), once; false when it cannot be read.
    bool open(const std::string &file);

    // Tells when there is something to read.
    int descriptor() const { return descriptor_; }

    // Reads what has been written; waits when that is nothing yet.
    void read();

    // The next line of what has been read, without its end; the last line may have none. Nothing when it has not been
    // read to its end.
    std::optional<std::string> take();

    // Whether every line has been taken.
    bool are_over() const { return is_read_ && text_.empty(); }

  private:
    int descriptor_ = -1;
    std::string text_; // has been read and not been taken
    bool is_read_ = false;
};
