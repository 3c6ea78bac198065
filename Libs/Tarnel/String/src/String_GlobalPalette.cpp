#include "Libs/Tarnel/String/src/String_GlobalPalette.h"

#include <cstring>
#include <mutex>
#include <new>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Types/src/Types_FNV1a.h"

namespace String {

namespace {

bool HasText(const PaletteNode& node, const char* text, uint32_t length) {
    return node.length == length && std::memcmp(node.Text(), text, length) == 0;
}

} // namespace

const PaletteNode* GlobalPalette::Intern(const char* sz, uint32_t uiLength) {
    PLATFORM_ASSERT_TEXT(sz || uiLength == 0, "!\"sz || uiLength == 0\"");
    if (!sz) {
        sz = "";
        uiLength = 0;
    }
    const uint32_t identity = Types::FNV1a({sz, uiLength});
    const PaletteNode* const pNewNode = FindOrAdd(sz, uiLength, identity);
    PLATFORM_ASSERT_MESSAGE(pNewNode, "Allocation Failed.  Cannot add string.");
    return pNewNode;
}

const PaletteNode* GlobalPalette::FindOrAdd(const char* text, uint32_t length, uint32_t identity) {
    const std::lock_guard lock(m_lock);
    try {
        PaletteNode*& first = m_chains[identity];
        for (const PaletteNode* node = first; node; node = node->next) {
            if (HasText(*node, text, length)) {
                return node;
            }
        }
        PaletteNode* const added = AddNode(text, length, identity);
        if (added) {
            added->next = first;
            first = added;
        }
        return added;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

PaletteNode* GlobalPalette::AddNode(const char* text, uint32_t length, uint32_t identity) {
    const std::size_t bytes = AlignUp(sizeof(PaletteNode) + std::size_t(length) + 1, alignof(PaletteNode));
    void* const block = m_allocator.Allocate(bytes, alignof(PaletteNode));
    if (!block) {
        return nullptr;
    }
    auto* const node = new (block) PaletteNode{nullptr, identity, length};
    char* const copy = reinterpret_cast<char*>(node + 1);
    std::memcpy(copy, text, length);
    copy[length] = 0;
    return node;
}

GlobalPalette& GetGlobalPalette() {
    return *EXP_GetStringPalette();
}

} // namespace String

// Never destroyed: names are used until the very end of the process.
String::GlobalPalette* EXP_GetStringPalette() {
    static auto* const s_palette = new String::GlobalPalette;
    return s_palette;
}
