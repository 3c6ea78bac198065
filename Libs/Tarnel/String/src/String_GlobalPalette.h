#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory_resource>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Printf.h"

// Interned texts: the palette keeps each text once, for the life of the process, and gives it a 32-bit
// identity. One palette serves the process and the modules loaded into it.
namespace String {

// Hands out memory that is never returned, cut from larger blocks. The palette calls it under its lock.
class PaletteAllocator {
public:
    // uiBytes must be a multiple of the alignment, and the alignment a power of two. Null if there is no
    // memory or a rule is broken.
    void* Allocate(std::size_t uiBytes, std::size_t uiAlign);

private:
    std::pmr::monotonic_buffer_resource m_memory{std::size_t{16} * 1024, std::pmr::new_delete_resource()};
};

// One interned text. The characters and their terminator follow it in memory.
struct PaletteNode {
    PaletteNode* next; // another text of the same identity
    uint32_t identity;
    uint32_t length;

    const char* Text() const { return reinterpret_cast<const char*>(this + 1); }
};

// Reached by GetGlobalPalette. Any thread.
class GlobalPalette {
public:
    GlobalPalette() = default;
    GlobalPalette(const GlobalPalette&) = delete; // nodes are compared by address across the process
    GlobalPalette& operator=(const GlobalPalette&) = delete;

    // The node of that text, made on first use and valid for the life of the process. Two texts with one
    // identity have two nodes. A null text is taken as the empty one. Null only if there is no memory.
    const PaletteNode* Intern(const char* sz, uint32_t uiLength);

private:
    const PaletteNode* FindOrAdd(std::string_view text, uint32_t identity);

    Platform::ReaderWriterLock m_lock;
    std::map<uint32_t, PaletteNode*> m_chains; // guarded by m_lock, as is the allocator
    PaletteAllocator m_allocator;
};

GlobalPalette& GetGlobalPalette();

// The 32-bit identity of a text, case-sensitive. Different texts may share one; compare String::Global if
// that matters.
class GlobalID {
public:
    static constexpr uint32_t NullIdentity = 0xFFFFFFFF;

    constexpr GlobalID() = default; // the identity of no text

    // Interns the text and takes its identity; null gives the identity of no text.
    explicit GlobalID(const char* text);

    // The identity that the text would have, without keeping the text.
    static GlobalID OfText(std::string_view text);
    static constexpr GlobalID FromValue(uint32_t value) { return GlobalID(value); }

    constexpr uint32_t Value() const { return m_identity; }
    constexpr bool operator==(const GlobalID&) const = default;
    constexpr bool operator<(const GlobalID& other) const { return m_identity < other.m_identity; }

private:
    constexpr explicit GlobalID(uint32_t identity) : m_identity(identity) {}

    uint32_t m_identity = NullIdentity;
};

// A handle to the palette's copy of a text, one pointer wide. Equal texts have equal handles.
class Global {
public:
    Global() = default; // no text
    explicit Global(std::string_view text);
    explicit Global(const char* text); // null gives no text

    // Never null: "" for no text.
    const char* Text() const { return m_node ? m_node->Text() : ""; }
    uint32_t Length() const { return m_node ? m_node->length : 0; }
    std::string_view View() const { return {Text(), Length()}; }
    GlobalID Id() const { return m_node ? GlobalID::FromValue(m_node->identity) : GlobalID(); }

    bool operator==(const Global&) const = default;

private:
    const PaletteNode* m_node = nullptr;
};

// For a text that must not be lost. Throws std::bad_alloc where the constructor would give no text.
Global NeededGlobal(const char* text);

// Interns a text formatted by printf rules. Throws std::bad_alloc.
Global FormatGlobal(const char* szFormat, ...) PLATFORM_PRINTF(1, 2);

// Formats by printf rules into the buffer, cut to its size and always terminated. Returns the length of the
// whole text, which may be more than the buffer holds, or a negative number if it can't be formatted.
int FormatList(char* szBuffer, std::size_t uiSize, const char* szFormat, va_list arguments)
    PLATFORM_PRINTF(3, 0);

} // namespace String

extern "C" String::GlobalPalette* EXP_GetStringPalette();
