// SPDX-License-Identifier: MIT
#include "support/allocations.hpp"

#include <cstdlib>
#include <new>

extern "C" {
// The real ones, or null when the program is not linked with --wrap.
[[gnu::weak]] void *__real_malloc(size_t size);
[[gnu::weak]] void *__real_calloc(size_t count, size_t size);
[[gnu::weak]] void *__real_realloc(void *memory, size_t size);
void *__wrap_malloc(size_t size);
void *__wrap_calloc(size_t count, size_t size);
void *__wrap_realloc(void *memory, size_t size);
}

namespace {

constinit thread_local int sLeft = -1; // how many still succeed before one fails; negative: none will
constinit thread_local bool sFailed = false;
constinit thread_local int sCount = 0;

bool IsToFail() noexcept {
    ++sCount;
    if (sLeft < 0 || sLeft-- > 0) return false;
    return sFailed = true;
}

} // namespace

void *__wrap_malloc(size_t size) {
    return IsToFail() ? nullptr : __real_malloc(size);
}
void *__wrap_calloc(size_t count, size_t size) {
    return IsToFail() ? nullptr : __real_calloc(count, size);
}
void *__wrap_realloc(void *memory, size_t size) {
    return IsToFail() ? nullptr : __real_realloc(memory, size);
}

// All forms of new and delete for what is not over-aligned: those of a sanitizer's own would not go with
// these. This malloc is the wrapped one.
void *operator new(size_t size, const std::nothrow_t &) noexcept {
    return std::malloc(size ? size : 1);
}
void *operator new(size_t size) {
    void *memory = operator new(size, std::nothrow);
    if (!memory) throw std::bad_alloc();
    return memory;
}
void *operator new[](size_t size, const std::nothrow_t &) noexcept {
    return operator new(size, std::nothrow);
}
void *operator new[](size_t size) {
    return operator new(size);
}
void operator delete(void *memory) noexcept {
    std::free(memory);
}
void operator delete(void *memory, size_t) noexcept {
    std::free(memory);
}
void operator delete(void *memory, const std::nothrow_t &) noexcept {
    std::free(memory);
}
void operator delete[](void *memory) noexcept {
    std::free(memory);
}
void operator delete[](void *memory, size_t) noexcept {
    std::free(memory);
}
void operator delete[](void *memory, const std::nothrow_t &) noexcept {
    std::free(memory);
}

namespace vellum::test {

bool IsAllocatorWrapped() noexcept {
    return __real_malloc && __real_calloc && __real_realloc;
}

void FailAllocationAfter(int successes) noexcept {
    sLeft = successes;
    sFailed = false;
}

bool HasAllocationFailed() noexcept {
    return sFailed;
}

int CountAllocations(const std::function<void()> &work) {
    const int before = sCount;
    work();
    return sCount - before;
}

bool ExhaustedMemoryTest::FailAfter(int successes, const std::function<void()> &work) {
    FailAllocationAfter(successes);
    work();
    sLeft = -1;
    return sFailed;
}

int ExhaustedMemoryTest::FailEach(const std::function<bool()> &work) {
    for (int n = 0;; ++n) {
        bool succeeded = false;
        const bool failed = FailAfter(n, [&] { succeeded = work(); });
        EXPECT_EQ(succeeded, !failed) << "allocation " << n;
        if (!failed || n > 100) return n;
    }
}

} // namespace vellum::test
