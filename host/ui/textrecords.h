// Records of the text form of patchers: words that end with a semicolon.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ext_mess.h"

namespace maxhost {

struct RecordWord {
    t_atom atom;       // what it reads as
    std::string typed; // as a person would type it into a box: quotes and escaped blanks stay, other escapes are gone
};

struct TextRecord {
    long line = 0; // in the text, counted from 1
    std::vector<RecordWord> words;

    // The word at a position: its text, "" when there is none or it is a number; its number, 0 when there is none.
    std::string_view text(size_t at) const;
    t_atom_long number(size_t at) const;
};

// Reads records one after the other. A backslash takes the next character as it is, double quotes hold blanks.
class RecordReader {
  public:
    explicit RecordReader(std::string_view text) : text_(text) {}

    // False at the end of the text. A record that the text breaks off is read as well; `broken_off` then is true.
    bool next(TextRecord &record);
    bool broken_off() const { return broken_off_; }

  private:
    void skip_blanks();
    RecordWord word();

    std::string_view text_;
    size_t at_ = 0;
    long line_ = 1;
    bool broken_off_ = false;
};

// The text as UTF-8: one that is not is taken for Mac Roman, in which the text form was written.
std::string utf8_of_old_text(const std::string &text);

} // namespace maxhost
