// The allocator's books: how many blocks are alive, and allocations that fail on purpose.
#pragma once

#include <cstddef>

namespace maxhost {

size_t blocks_alive();

// The n-th allocation from now on (1: the next) gives null, once. 0 takes that back.
void fail_allocation(long n);

// Counts one allocation towards the failing one; true when it is this one that fails.
bool allocation_fails();

} // namespace maxhost
