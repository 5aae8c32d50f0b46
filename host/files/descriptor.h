// File descriptors that are closed at the end of their scope.
#pragma once

#include <unistd.h>

#include <utility>

namespace maxhost {

class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() {
        if (is_open())
            ::close(number_);
    }
    Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    bool is_open() const { return number_ >= 0; }
    operator int() const { return number_; }

  private:
    int number_;
};

} // namespace maxhost
