#pragma once

#include <cstdint>
#include <string_view>

// The 32-bit FNV-1a hash. Logs are told apart by it and interned texts have it as their identity, so its
// values are part of what modules share.
namespace Types {

inline constexpr uint32_t FNV1aOffsetBasis = 0x811C9DC5;
inline constexpr uint32_t FNV1aPrime = 16777619;

// The hash of what hash stands for, followed by one more byte.
constexpr uint32_t FNV1aAddByte(uint32_t hash, uint8_t byte) {
    return (hash ^ byte) * FNV1aPrime;
}

// One UTF-16 unit, low byte first.
constexpr uint32_t FNV1aAddUnit(uint32_t hash, uint16_t unit) {
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

// Over the text's UTF-16 units, also where wchar_t holds whole code points: the value is the same everywhere.
constexpr uint32_t FNV1aWide(std::wstring_view text) {
    uint32_t hash = FNV1aOffsetBasis;
    for (const wchar_t c : text) {
        const auto codePoint = static_cast<uint32_t>(c);
        if (sizeof(wchar_t) > 2 && codePoint > 0xFFFF) {
            const uint32_t offset = codePoint - 0x10000;
            hash = FNV1aAddUnit(hash, static_cast<uint16_t>(0xD800 + ((offset >> 10) & 0x3FF)));
            hash = FNV1aAddUnit(hash, static_cast<uint16_t>(0xDC00 + (offset & 0x3FF)));
        } else {
            hash = FNV1aAddUnit(hash, static_cast<uint16_t>(codePoint & 0xFFFF));
        }
    }
    return hash;
}

} // namespace Types
