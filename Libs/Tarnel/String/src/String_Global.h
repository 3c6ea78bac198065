#pragma once

#include <cstdint>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Printf.h"
#include "Libs/Tarnel/String/src/String_GlobalPalette.h"

namespace String {

// The 32-bit identity of a text, case-sensitive. Texts that differ may share one: where that matters, compare
// String::Global.
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

// A handle to the palette's copy of a text. Copies cost a pointer; equal texts have equal handles. The text
// lives as long as the process.
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

// Interns a text made by printf rules.
Global FormatGlobal(const char* szFormat, ...) PLATFORM_PRINTF(1, 2);

} // namespace String
