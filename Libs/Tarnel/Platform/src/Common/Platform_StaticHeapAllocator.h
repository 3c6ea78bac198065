#pragma once

#include <cstddef>
#include <new>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"

namespace Platform {

// Standard allocator over the general heap for containers that only ever ask for TAllocSize elements at a
// time, as lists and maps ask for one node. A request of another size is reported, but served.
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
        if (n > static_cast<std::size_t>(-1) / sizeof(T)) {
            throw std::bad_alloc();
        }
        void* const block = GeneralAllocate(n * sizeof(T), alignof(T));
        if (!block) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(block);
    }
    void deallocate(T* block, std::size_t) { GeneralFree(block); }

    friend bool operator==(const StaticHeapAllocator&, const StaticHeapAllocator&) { return true; }
};

} // namespace Platform
