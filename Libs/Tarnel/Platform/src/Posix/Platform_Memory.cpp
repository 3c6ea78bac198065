#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"

#include <bit>
#include <cstdlib>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Platform {

void* GeneralAllocate(std::size_t size, std::size_t alignment) {
    const std::size_t rounded = RoundUpToGranularity(size);
    const std::size_t atLeast = alignment < MemoryGranularity ? MemoryGranularity : alignment;
    void* pBlock = nullptr;
    if (rounded >= size && std::has_single_bit(atLeast) &&
        posix_memalign(&pBlock, atLeast, rounded ? rounded : MemoryGranularity) != 0) {
        pBlock = nullptr;
    }
    PLATFORM_ASSERT(pBlock);
    return pBlock;
}

void GeneralFree(void* block) {
    std::free(block);
}

} // namespace Platform
