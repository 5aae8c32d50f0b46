// Signals that wait while a file is written.
#pragma once

#include <csignal>
#include <initializer_list>

namespace maxhost {

// Signals to the calling thread wait until the scope ends, so that they do not end the program in the midst of a file.
// Those that a failing write sends (SIGPIPE, SIGXFSZ) are held as well, and dropped: its result tells it.
class HeldSignals {
  public:
    explicit HeldSignals(std::initializer_list<int> numbers);
    ~HeldSignals();
    HeldSignals(const HeldSignals &) = delete;
    HeldSignals &operator=(const HeldSignals &) = delete;

  private:
    sigset_t before_;
};

} // namespace maxhost
