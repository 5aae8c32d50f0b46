// The allocator's books: how many blocks are alive, and allocations that fail on purpose.
#pragma once

#include <cstddef>

namespace maxhost {

size_t blocks_alive();

// The n-th allocation from now on (1: the next) gives null, and when that is lasting all after it. 0 takes that back.
void fail_allocation(long n, bool lasting);

// How many have given null since.
long allocation_failures();

// Counts one allocation towards the failing one; true when it is this one that fails.
bool allocation_fails();

} // namespace maxhost
