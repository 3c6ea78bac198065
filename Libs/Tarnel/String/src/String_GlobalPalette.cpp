#include "Libs/Tarnel/String/src/String_GlobalPalette.h"

#include <cstdio>
#include <mutex>
#include <new>
#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Types/src/Types_FNV1a.h"

namespace String {

void* PaletteAllocator::Allocate(std::size_t uiBytes, std::size_t uiAlign) {
    const bool isAlignment = uiAlign && !(uiAlign & (uiAlign - 1));
    PLATFORM_ASSERT_TEXT(isAlignment, "uiAlign && !(uiAlign & (uiAlign - 1))");
    if (!isAlignment) {
        return nullptr;
    }
    PLATFORM_ASSERT_TEXT((uiBytes % uiAlign) == 0, "(uiBytes % uiAlignment) == 0");
    if (uiBytes % uiAlign != 0) {
        return nullptr;
    }
    try {
        return m_memory.allocate(uiBytes, uiAlign);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

const PaletteNode* GlobalPalette::Intern(const char* sz, uint32_t uiLength) {
    PLATFORM_ASSERT_TEXT(sz || uiLength == 0, "!\"sz || uiLength == 0\"");
    const std::string_view text = sz ? std::string_view(sz, uiLength) : std::string_view();
    const PaletteNode* const pNewNode = FindOrAdd(text, Types::FNV1a(text));
    PLATFORM_ASSERT_MESSAGE(pNewNode, "Allocation Failed.  Cannot add string.");
    return pNewNode;
}

const PaletteNode* GlobalPalette::FindOrAdd(std::string_view text, uint32_t identity) try {
    const std::lock_guard lock(m_lock);
    PaletteNode*& first = m_chains[identity];
    for (const PaletteNode* node = first; node; node = node->next) {
        if (std::string_view(node->Text(), node->length) == text) {
            return node;
        }
    }
    constexpr std::size_t Align = alignof(PaletteNode);
    const std::size_t bytes = (sizeof(PaletteNode) + text.size() + 1 + Align - 1) / Align * Align;
    void* const block = m_allocator.Allocate(bytes, Align);
    if (!block) {
        return nullptr;
    }
    first = new (block) PaletteNode{first, identity, static_cast<uint32_t>(text.size())};
    char* const copy = reinterpret_cast<char*>(first + 1);
    text.copy(copy, text.size());
    copy[text.size()] = 0;
    return first;
} catch (const std::bad_alloc&) {
    return nullptr;
}

GlobalPalette& GetGlobalPalette() {
    return *EXP_GetStringPalette();
}

GlobalID GlobalID::OfText(std::string_view text) {
    return GlobalID(Types::FNV1a(text));
}

GlobalID::GlobalID(const char* text) : GlobalID(Global(text).Id()) {}

Global::Global(std::string_view text)
    : m_node(GetGlobalPalette().Intern(text.data(), static_cast<uint32_t>(text.size()))) {}

Global::Global(const char* text) {
    if (text) {
        *this = Global(std::string_view(text));
    }
}

Global NeededGlobal(const char* text) {
    const Global global(text);
    if (text && global == Global()) {
        throw std::bad_alloc();
    }
    return global;
}

Global FormatGlobal(const char* szFormat, ...) {
    char onStack[1024];
    va_list arguments = {};
    va_list again = {};
    va_start(arguments, szFormat);
    va_copy(again, arguments);
    const int needed = FormatList(onStack, sizeof(onStack), szFormat, arguments);
    va_end(arguments);
    Global global;
    if (needed >= static_cast<int>(sizeof(onStack))) {
        std::string onHeap(static_cast<std::size_t>(needed), '\0');
        FormatList(onHeap.data(), onHeap.size() + 1, szFormat, again);
        global = Global(std::string_view(onHeap));
    } else if (needed >= 0) {
        global = Global(std::string_view(onStack, static_cast<std::size_t>(needed)));
    }
    va_end(again);
    return global;
}

int FormatList(char* szBuffer, std::size_t uiSize, const char* szFormat, va_list arguments) {
    PLATFORM_ASSERT(szBuffer && szFormat);
    return szBuffer && szFormat ? std::vsnprintf(szBuffer, uiSize, szFormat, arguments) : -1;
}

} // namespace String

// Never destroyed: names are used until the very end of the process.
String::GlobalPalette* EXP_GetStringPalette() {
    static auto* const s_palette = new String::GlobalPalette;
    return s_palette;
}
