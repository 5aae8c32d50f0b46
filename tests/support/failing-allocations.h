// Running something with its first, its second, its third … allocation failing, until it passes untouched.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "embed/host.h"
#include "ext_sysmem.h"

// Whether the n-th allocation has been reached. A failure that is still to come is taken back.
inline bool allocation_has_failed(long n) {
    for (long i = 0; i < n; ++i) {
        t_ptr block = sysmem_newptr(1);
        if (!block)
            return false;
        sysmem_freeptr(block);
    }
    return true;
}

// Each time operation() is run, and then check(failed), where `failed` tells whether an allocation has failed. The last
// time none has.
template <typename Operation, typename Check> void with_each_allocation_failing(Operation operation, Check check) {
    bool failed = true;
    for (long n = 1; failed; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n) + " fails");
        maxhost::fail_nth_allocation(n);
        operation();
        failed = allocation_has_failed(n);
        check(failed);
    }
}
