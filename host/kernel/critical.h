// The global critical region.
#pragma once

namespace maxhost {

// Holds the region while it lives, for the host's own use: no trace tells of it.
class HeldRegion {
  public:
    HeldRegion();
    ~HeldRegion();
    HeldRegion(const HeldRegion &) = delete;
    HeldRegion &operator=(const HeldRegion &) = delete;
};

// To be called where an event is over: a region that the calling thread still holds is misuse, and is left.
void expect_no_region(const char *event);

} // namespace maxhost
