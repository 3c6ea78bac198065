#pragma once

#include <cstddef>

// The general heap: 16-byte aligned blocks, any thread.
namespace Platform {

inline constexpr std::size_t MemoryGranularity = 16;

// Rounds up to whole granules; 0 when the sum does not fit.
constexpr std::size_t RoundUpToGranularity(std::size_t size) {
    return (size + (MemoryGranularity - 1)) & ~(MemoryGranularity - 1);
}

// At least size bytes at a multiple of alignment, a power of two; less than 16 counts as 16. Null, after a
// failed assertion, when there is no memory. A block of size 0 must be freed too.
[[nodiscard]] void* GeneralAllocate(std::size_t size, std::size_t alignment = MemoryGranularity);

// Null is allowed. Only for blocks of GeneralAllocate.
void GeneralFree(void* block);

// For buffers that live shortly: from the temp heap while it has room, else from the general heap.
[[nodiscard]] void* ShortLivedAllocate(std::size_t size);
void ShortLivedFree(void* block);

} // namespace Platform
