#pragma once

#include <cstdint>
#include <string_view>

// The 32-bit FNV-1a hash. It identifies logs and interned texts, and modules loaded into the process share
// its values.
namespace Types {

inline constexpr uint32_t FNV1aOffsetBasis = 0x811C9DC5;
inline constexpr uint32_t FNV1aPrime = 16777619;

// Extends hash by one byte.
constexpr uint32_t FNV1aAddByte(uint32_t hash, uint8_t byte) {
    return (hash ^ byte) * FNV1aPrime;
}

// Extends hash by one UTF-16 unit, low byte first.
constexpr uint32_t FNV1aAddUnit(uint32_t hash, uint32_t unit) {
    hash = FNV1aAddByte(hash, static_cast<uint8_t>(unit & 0xFF));
    return FNV1aAddByte(hash, static_cast<uint8_t>(unit >> 8));
}

constexpr uint32_t FNV1a(std::string_view bytes) {
    uint32_t hash = FNV1aOffsetBasis;
    for (const char c : bytes) {
        hash = FNV1aAddByte(hash, static_cast<uint8_t>(c));
    }
    return hash;
}

// Hashes the text's UTF-16 units, also on systems where wchar_t holds a whole code point, so that the value
// is the same everywhere.
constexpr uint32_t FNV1aWide(std::wstring_view text) {
    uint32_t hash = FNV1aOffsetBasis;
    for (const wchar_t c : text) {
        auto unit = static_cast<uint32_t>(c);
        if (unit > 0xFFFF) {
            hash = FNV1aAddUnit(hash, 0xD800 + ((unit - 0x10000) >> 10));
            unit = 0xDC00 + (unit & 0x3FF);
        }
        hash = FNV1aAddUnit(hash, unit);
    }
    return hash;
}

} // namespace Types
