#include "Libs/Tarnel/String/src/String_PaletteAllocator.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"

namespace String {

namespace {

bool IsAlignment(std::size_t uiAlign) {
    PLATFORM_ASSERT(uiAlign && !(uiAlign & (uiAlign - 1)));
    return uiAlign && !(uiAlign & (uiAlign - 1));
}

} // namespace

std::size_t AlignUp(std::size_t value, std::size_t uiAlign) {
    return IsAlignment(uiAlign) ? (value + uiAlign - 1) & ~(uiAlign - 1) : value;
}

PaletteAllocator::~PaletteAllocator() {
    while (m_blocks) {
        Platform::GeneralFree(std::exchange(m_blocks, m_blocks->previous));
    }
}

void* PaletteAllocator::Allocate(std::size_t uiBytes, std::size_t uiAlignment) {
    if (!IsAlignment(uiAlignment)) {
        return nullptr;
    }
    PLATFORM_ASSERT_TEXT((uiBytes % uiAlignment) == 0, "(uiBytes % uiAlignment) == 0");
    if (uiBytes % uiAlignment != 0) {
        return nullptr;
    }
    const std::size_t padding = (0 - reinterpret_cast<std::uintptr_t>(m_next)) & (uiAlignment - 1);
    if (!m_next || m_left < padding || m_left - padding < uiBytes) {
        return AllocateFromNewBlock(uiBytes);
    }
    std::byte* const bytes = m_next + padding;
    m_next = bytes + uiBytes;
    m_left -= padding + uiBytes;
    return bytes;
}

// A large request gets a block of its own and leaves the rest of the current one in use.
void* PaletteAllocator::AllocateFromNewBlock(std::size_t uiBytes) {
    const std::size_t size = std::max(uiBytes, BlockSize);
    void* const memory = Platform::GeneralAllocate(sizeof(Block) + size);
    if (!memory) {
        return nullptr;
    }
    m_blocks = new (memory) Block{m_blocks};
    auto* const bytes = reinterpret_cast<std::byte*>(m_blocks + 1);
    if (size - uiBytes > m_left) {
        m_next = bytes + uiBytes;
        m_left = size - uiBytes;
    }
    return bytes;
}

} // namespace String
