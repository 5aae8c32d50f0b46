// The transcript: one line an event, in the order in which things happen.
#pragma once

#include <cstdio>
#include <deque>
#include <mutex>
#include <string>

#include "embed/host.h"

class Transcript {
  public:
    explicit Transcript(std::FILE *out) : out_(out) {}

    // Any thread. Written at once.
    void line(const std::string &text);

    // Whether every line so far could be written.
    bool is_whole() const { return std::ferror(out_) == 0; }

    // What the next save dialogs answer, in order; an empty text cancels. Dialogs without an answer are cancelled.
    void prepare_answer(const std::string &file) { answers_.push_back(file); }

    // A front end that writes everything down. The transcript outlives the host.
    maxhost::FrontEnd front_end(unsigned traced);

  private:
    std::string answer_dialog(const std::string &prompt, const std::string &proposal);

    std::FILE *out_;
    std::mutex mutex_;
    std::deque<std::string> answers_;
};

// A record of a draw list as a transcript line shows it.
std::string paint_line(long row, const maxhost::DrawRecord &record);

std::string view_line(const maxhost::ViewState &state);
