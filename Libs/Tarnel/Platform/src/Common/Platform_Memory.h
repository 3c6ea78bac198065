#pragma once

#include <cstddef>
#include <new>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

// The general heap: 16-byte aligned blocks, any thread.
namespace Platform {

inline constexpr std::size_t MemoryGranularity = 16;

// 0 if the sum does not fit.
constexpr std::size_t RoundUpToGranularity(std::size_t size) {
    return (size + (MemoryGranularity - 1)) & ~(MemoryGranularity - 1);
}

// At least size bytes at a multiple of alignment, a power of two; less than 16 counts as 16. Null, after a
// failed assertion, if there is no memory. A block of size 0 must be freed too.
[[nodiscard]] void* GeneralAllocate(std::size_t size, std::size_t alignment = MemoryGranularity);

// Null is allowed. Only for blocks of GeneralAllocate.
void GeneralFree(void* block);

// For short-lived buffers: from the temp heap while it has room, else from the general heap.
[[nodiscard]] void* ShortLivedAllocate(std::size_t size);
void ShortLivedFree(void* block);

// Standard allocator over the general heap for containers that only ever ask for TAllocSize elements at a
// time, as lists and maps ask for one node. A request of another size is reported and served.
template <class T, std::size_t TAllocSize = 1>
class StaticHeapAllocator {
public:
    using value_type = T;
    template <class U>
    struct rebind {
        using other = StaticHeapAllocator<U, TAllocSize>;
    };

    StaticHeapAllocator() = default;
    template <class U>
    explicit(false) StaticHeapAllocator(const StaticHeapAllocator<U, TAllocSize>&) {}

    // Throws std::bad_alloc, as containers expect.
    [[nodiscard]] T* allocate(std::size_t n) {
        PLATFORM_ASSERT(n == TAllocSize);
        void* const block = n <= static_cast<std::size_t>(-1) / sizeof(T)
                                ? GeneralAllocate(n * sizeof(T), alignof(T))
                                : nullptr;
        if (!block) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(block);
    }
    void deallocate(T* block, std::size_t) { GeneralFree(block); }

    friend bool operator==(const StaticHeapAllocator&, const StaticHeapAllocator&) { return true; }
};

} // namespace Platform
