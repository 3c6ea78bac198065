#pragma once

#include <cstdint>
#include <map>

#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"
#include "Libs/Tarnel/String/src/String_PaletteAllocator.h"

namespace String {

// One interned text: the header of a block whose rest is the text with its terminator.
struct PaletteNode {
    PaletteNode* next; // another text of the same identity
    uint32_t identity;
    uint32_t length;

    const char* Text() const { return reinterpret_cast<const char*>(this + 1); }
};

// Stores every interned text once, for the life of the process, so that nodes and their texts may be kept
// without a count of users. One per process, reached by GetGlobalPalette. Any thread.
class GlobalPalette {
public:
    GlobalPalette() = default;
    GlobalPalette(const GlobalPalette&) = delete; // nodes are compared by address across the process
    GlobalPalette& operator=(const GlobalPalette&) = delete;

    // The node of that text, made on first use. Two texts with one identity have two nodes. Null only when
    // there is no memory. A null text is taken as the empty one.
    const PaletteNode* Intern(const char* sz, uint32_t uiLength);

private:
    const PaletteNode* FindOrAdd(const char* text, uint32_t length, uint32_t identity);
    PaletteNode* AddNode(const char* text, uint32_t length, uint32_t identity);

    Platform::ReaderWriterLock m_lock;
    std::map<uint32_t, PaletteNode*> m_chains; // guarded by m_lock, as is the allocator
    PaletteAllocator m_allocator;
};

GlobalPalette& GetGlobalPalette();

} // namespace String

extern "C" String::GlobalPalette* EXP_GetStringPalette();
