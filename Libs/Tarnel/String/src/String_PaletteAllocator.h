#pragma once

#include <cstddef>

namespace String {

// Hands out memory cut from larger blocks, all of which are given back when the allocator is destroyed. Not
// thread-safe: the palette calls it under its lock.
class PaletteAllocator {
public:
    static constexpr std::size_t BlockSize = std::size_t{16} * 1024;

    PaletteAllocator() = default;
    ~PaletteAllocator();
    PaletteAllocator(const PaletteAllocator&) = delete; // two owners of one block would hand it out twice
    PaletteAllocator& operator=(const PaletteAllocator&) = delete;

    // bytes must be a multiple of the alignment, which must be a power of two of at most 16. Null when there
    // is no memory or a rule is broken.
    void* Allocate(std::size_t bytes, std::size_t alignment);

private:
    // Starts each block; keeps what follows aligned to 16 bytes.
    struct alignas(16) Block {
        Block* previous;
    };

    void* AllocateFromNewBlock(std::size_t bytes);

    Block* m_blocks = nullptr;
    std::byte* m_next = nullptr;
    std::size_t m_left = 0;
};

// value raised to the next multiple of the alignment.
std::size_t AlignUp(std::size_t value, std::size_t alignment);

} // namespace String
