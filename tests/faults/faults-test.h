// A test that runs an operation again and again, with its first, its second, its third … allocation failing.
#pragma once

#include "vrk.jxml-resfile.h" // libxml2's headers come before the host's

#include <map>
#include <new>

#include "faults/allocators.h"
#include "support/host-test.h"

class FaultsTest : public HostTest {
  protected:
    void SetUp() override;
    void TearDown() override; // tells how many runs there were

    // The front end's lines are written down without being counted.
    maxhost::FrontEnd uncounted_front_end();

    // For each allocator, a passing and a lasting shortage and n = 1, 2, 3 …: prepare(), operation() with the n-th
    // allocation failing, check(failed), clean(), until nothing fails any more. Nothing may be left behind. A C++
    // function of the host that the operation calls may throw std::bad_alloc; then check hears of `told`.
    template <typename Prepare, typename Operation, typename Check, typename Clean>
    void sweep(const std::string &what, Prepare prepare, Operation operation, Check check, Clean clean,
               std::span<const Allocator> allocators = all_allocators) {
        for (const Allocator allocator : allocators)
            for (const Shortage shortage : {Shortage::passing, Shortage::lasting})
                sweep_shortage(what, prepare, operation, check, clean, allocator, shortage);
    }

    bool has_error() const;         // an error on the console
    bool told = false;              // the operation's failure reached its caller as an exception
    std::map<Allocator, long> runs; // in which an allocation failed
    void expect_no_misuse();        // of the host

  private:
    template <typename Prepare, typename Operation, typename Check, typename Clean>
    void sweep_shortage(const std::string &what, const Prepare &prepare, const Operation &operation, const Check &check,
                        const Clean &clean, Allocator allocator, Shortage shortage) {
        bool failed = true;
        for (long n = 1; failed && !HasFailure(); ++n) {
            const std::string place = what + ", " + name_of(allocator) + " " + std::to_string(n) +
                                      (shortage == Shortage::lasting ? " and all after it" : "");
            SCOPED_TRACE(place);
            ASSERT_LT(n, 100000) << "allocations without end";
            run_begins(place);
            prepare();
            failed = run(allocator, shortage, n, operation);
            check(failed);
            clean();
            run_ends(allocator, failed);
        }
    }
    template <typename Operation> bool run(Allocator allocator, Shortage shortage, long n, const Operation &operation) {
        told = false;
        take_lines();
        FailingAllocation failing(allocator, shortage, n);
        try {
            operation();
        } catch (const std::bad_alloc &) {
            told = true;
        }
        return failing.end();
    }
    void run_begins(const std::string &place);
    void run_ends(Allocator allocator, bool failed);

    maxhost::MemoryInUse before_{};
    size_t xml_before_ = 0;
};
