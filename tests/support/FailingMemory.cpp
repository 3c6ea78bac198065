#include "tests/support/FailingMemory.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t s_untilFailure = SIZE_MAX; // SIZE_MAX: none is to fail

} // namespace

void* operator new(std::size_t size) {
    void* const block = s_untilFailure == 0 ? nullptr : std::malloc(size > 0 ? size : 1);
    if (s_untilFailure != SIZE_MAX) {
        --s_untilFailure; // past 0 it is SIZE_MAX
    }
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

// The address sanitizer has one of its own, whose blocks it would not let the operator below free.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace TestSupport {

FailingMemory::FailingMemory(std::size_t nth) {
    s_untilFailure = nth;
}

FailingMemory::~FailingMemory() {
    s_untilFailure = SIZE_MAX;
}

bool FailingMemory::HasFailed() const {
    return s_untilFailure == SIZE_MAX;
}

} // namespace TestSupport
