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

    // Why a line could not be written, the first of them; empty while every line could. Any thread.
    std::string fault();

    // What the next save dialogs answer, in order; an empty text cancels. Dialogs without an answer are cancelled.
    void prepare_answer(const std::string &file) { answers_.push_back(file); }

    // A front end that writes everything down. The transcript outlives the host.
    maxhost::FrontEnd front_end(unsigned traced);

  private:
    std::string answer_dialog(const std::string &prompt, const std::string &proposal);

    std::FILE *out_;
    std::mutex mutex_;
    int fault_ = 0; // an error number
    std::deque<std::string> answers_;
};

// A record of a draw list as a transcript line shows it.
std::string paint_line(long row, const maxhost::DrawRecord &record);

std::string view_line(const maxhost::ViewState &state);
