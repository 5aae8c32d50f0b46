// Allocators that fail: the host's, malloc and new of the plug-in and of what it calls, and libxml2's own.
#pragma once

#include <array>
#include <cstddef>

// host: blocks and objects that plug-ins ask the host for. plugin_malloc: malloc, calloc and realloc in the plug-in's
// own sources. every_new: operator new of the plug-in, the host and the standard library. libxml2: all that libxml2
// takes.
enum class Allocator { host, plugin_malloc, every_new, libxml2 };
inline constexpr std::array all_allocators = {Allocator::host, Allocator::plugin_malloc, Allocator::every_new,
                                              Allocator::libxml2};
const char *name_of(Allocator allocator);

// What becomes of the allocations after the one that fails.
enum class Shortage { passing, lasting };

// Has the n-th allocation (1: the next) of the calling thread fail, and when the shortage lasts all after it, until the
// scope ends. One at a time.
class FailingAllocation {
  public:
    FailingAllocation(Allocator allocator, Shortage shortage, long n);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation &) = delete;
    FailingAllocation &operator=(const FailingAllocation &) = delete;

    // Ends the shortage. Whether it has come.
    bool end();

  private:
    Allocator allocator_;
    bool ended_ = false;
    bool failed_ = false;
};

// While it lives nothing fails or is counted, but for the host's blocks: for code of a test that the code under test
// calls.
class UncountedAllocations {
  public:
    UncountedAllocations();
    ~UncountedAllocations();
    UncountedAllocations(const UncountedAllocations &) = delete;
    UncountedAllocations &operator=(const UncountedAllocations &) = delete;
};

// Has libxml2 use its failing allocator. To be called before libxml2 is used.
void take_over_libxml2();

// Blocks that libxml2 has not given back.
std::size_t libxml2_blocks();
