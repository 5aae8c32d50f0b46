// The host's allocator. Blocks are malloc's own, so that tools see their exact bounds; sizes are kept beside them.
#include "kernel/memory.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <new>
#include <unordered_map>

#include "ext_sysmem.h"
#include "kernel/door.h"

namespace maxhost {
namespace {

struct Books {
    std::mutex mutex;
    std::unordered_map<void *, t_ptr_size> sizes;
    std::atomic<long> until_failure{0}; // 0: none fails; 1: the next one
    std::atomic<bool> failures_last{false};
    std::atomic<long> failures{0};
};

Books &books() {
    static auto &the_books = *new Books;
    return the_books;
}

t_ptr allocate(t_ptr_size size, void *(*from)(t_ptr_size)) {
    if (allocation_fails())
        return nullptr;
    void *block = from(size ? size : 1);
    if (!block)
        return nullptr;
    try {
        std::lock_guard lock(books().mutex);
        books().sizes.emplace(block, size);
    } catch (const std::bad_alloc &) {
        std::free(block);
        return nullptr;
    }
    return static_cast<t_ptr>(block);
}

} // namespace

size_t blocks_alive() {
    std::lock_guard lock(books().mutex);
    return books().sizes.size();
}

void fail_allocation(long n, bool lasting) {
    books().failures = 0;
    books().failures_last = lasting;
    books().until_failure = n;
}

long allocation_failures() { return books().failures; }

bool allocation_fails() {
    const long last = books().failures_last ? 1 : 0;
    long left = books().until_failure.load();
    while (left > last && !books().until_failure.compare_exchange_weak(left, left - 1)) {
    }
    books().failures += left == 1;
    return left == 1;
}

} // namespace maxhost

using namespace maxhost;

t_ptr sysmem_newptr(t_ptr_size size) { return allocate(size, std::malloc); }

t_ptr sysmem_newptrclear(t_ptr_size size) {
    return allocate(size, [](t_ptr_size n) { return std::calloc(1, n); });
}

t_ptr_size sysmem_ptrsize(void *ptr) {
    {
        std::lock_guard lock(books().mutex);
        if (auto found = books().sizes.find(ptr); found != books().sizes.end())
            return found->second;
    }
    misuse("sysmem_ptrsize", "not a block of this allocator");
    return 0;
}

void sysmem_freeptr(void *ptr) {
    if (!ptr)
        return;
    bool known;
    {
        std::lock_guard lock(books().mutex);
        known = books().sizes.erase(ptr) == 1;
    }
    if (at_door(known, "sysmem_freeptr", "not a block of this allocator, or released before"))
        std::free(ptr);
}
