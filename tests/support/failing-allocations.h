// Running something with its first, its second, its third … allocation failing, until it passes untouched.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "embed/host.h"

// Each time operation() is run, and then check(failed), where `failed` tells whether an allocation has failed. The last
// time none has.
template <typename Operation, typename Check> void with_each_allocation_failing(Operation operation, Check check) {
    bool failed = true;
    for (long n = 1; failed; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n) + " fails");
        maxhost::fail_nth_allocation(n);
        operation();
        failed = maxhost::failed_allocations() > 0;
        maxhost::fail_nth_allocation(0);
        check(failed);
    }
}
