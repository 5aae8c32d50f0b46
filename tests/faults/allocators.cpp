// The failing allocators. The linker brings calls of malloc, calloc and realloc in the plug-in's objects here (--wrap);
// operator new is replaced for the whole process; libxml2 is told which functions to use.
#include "faults/allocators.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include <libxml/xmlmemory.h>
#include <libxml/xpathInternals.h>

#include "embed/host.h"

#pragma GCC visibility push(default) // the linker brings the shared libraries' calls here too, but not at run time
extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_realloc(void *block, std::size_t size);
void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void *__wrap_realloc(void *block, std::size_t size);
void __real_xmlXPathEvalExpr(xmlXPathParserContextPtr run);
void __wrap_xmlXPathEvalExpr(xmlXPathParserContextPtr run);
}
#pragma GCC visibility pop

namespace {

thread_local Allocator armed;
thread_local long until_failure = 0; // 0: nothing is to fail; 1: the next one
thread_local Shortage shortage_to_come;
thread_local bool has_failed = false;
thread_local bool uncounted = false;
std::atomic<std::size_t> xml_blocks{0};

// Counts one allocation towards the one that fails; true when it is this one, or one after it in a lasting shortage.
bool fails(Allocator allocator) {
    if (until_failure == 0 || armed != allocator || uncounted)
        return false;
    const bool now = until_failure == 1;
    if (!now || shortage_to_come == Shortage::passing)
        --until_failure;
    has_failed |= now;
    return now;
}

void *counted(void *block) {
    xml_blocks += block != nullptr;
    return block;
}

void *xml_malloc(std::size_t size) { return counted(fails(Allocator::libxml2) ? nullptr : __real_malloc(size)); }

void xml_free(void *block) {
    xml_blocks -= block != nullptr;
    std::free(block);
}

void *xml_realloc(void *block, std::size_t size) {
    if (!block)
        return xml_malloc(size);
    return fails(Allocator::libxml2) ? nullptr : __real_realloc(block, size);
}

char *xml_strdup(const char *text) {
    const std::size_t size = std::strlen(text) + 1;
    char *copy = static_cast<char *>(xml_malloc(size));
    return copy ? static_cast<char *>(std::memcpy(copy, text, size)) : nullptr;
}

void *new_block(std::size_t size) noexcept {
    return fails(Allocator::every_new) ? nullptr : __real_malloc(size ? size : 1);
}

void *new_block_or_throw(std::size_t size) {
    if (void *block = new_block(size))
        return block;
    throw std::bad_alloc();
}

} // namespace

const char *name_of(Allocator allocator) {
    static constexpr const char *names[] = {"host", "malloc", "new", "libxml2"};
    return names[static_cast<std::size_t>(allocator)];
}

FailingAllocation::FailingAllocation(Allocator allocator, Shortage shortage, long n) : allocator_(allocator) {
    if (allocator == Allocator::host) {
        shortage == Shortage::lasting ? maxhost::fail_allocations_from(n) : maxhost::fail_nth_allocation(n);
        return;
    }
    armed = allocator;
    shortage_to_come = shortage;
    has_failed = false;
    until_failure = n;
}

FailingAllocation::~FailingAllocation() { end(); }

bool FailingAllocation::end() {
    if (ended_)
        return failed_;
    ended_ = true;
    until_failure = 0;
    failed_ = allocator_ == Allocator::host ? maxhost::failed_allocations() > 0 : has_failed;
    maxhost::fail_nth_allocation(0);
    return failed_;
}

UncountedAllocations::UncountedAllocations() { uncounted = true; }
UncountedAllocations::~UncountedAllocations() { uncounted = false; }

void take_over_libxml2() { xmlMemSetup(xml_free, xml_malloc, xml_realloc, xml_strdup); }

std::size_t libxml2_blocks() { return xml_blocks; }

// ---- malloc in the plug-in

void *__wrap_malloc(std::size_t size) { return fails(Allocator::plugin_malloc) ? nullptr : __real_malloc(size); }

void *__wrap_calloc(std::size_t count, std::size_t size) {
    return fails(Allocator::plugin_malloc) ? nullptr : __real_calloc(count, size);
}

void *__wrap_realloc(void *block, std::size_t size) {
    return fails(Allocator::plugin_malloc) ? nullptr : __real_realloc(block, size);
}

// What is not promised: when its allocations fail in the midst of an evaluation, libxml2 2.9.14 crashes (a string
// object that it could not make, used in xmlXPathEqualValues for "[@number=1]") or loses node sets (made in
// xmlXPathNodeSetAddUnique). No caller can do anything about it, so that nothing of libxml2's fails there. Plain paths,
// those of numbered resources among them, need no evaluation.
void __wrap_xmlXPathEvalExpr(xmlXPathParserContextPtr run) {
    const bool libxml2_fails = armed == Allocator::libxml2 && !uncounted;
    if (libxml2_fails)
        uncounted = true;
    __real_xmlXPathEvalExpr(run);
    if (libxml2_fails)
        uncounted = false;
}

// ---- new

void *operator new(std::size_t size) { return new_block_or_throw(size); }
void *operator new[](std::size_t size) { return new_block_or_throw(size); }
void *operator new(std::size_t size, const std::nothrow_t &) noexcept { return new_block(size); }
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept { return new_block(size); }
void operator delete(void *block) noexcept { std::free(block); }
void operator delete[](void *block) noexcept { std::free(block); }
void operator delete(void *block, std::size_t) noexcept { std::free(block); }
void operator delete[](void *block, std::size_t) noexcept { std::free(block); }
