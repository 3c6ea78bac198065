#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The layout of a package (see docs/formats.md). Lengths are the low 32 bits in eight upper-case hexadecimal
// digits, so a body or entry of 4 GiB or more is written with a wrapped length.
namespace PackageFormat {

inline constexpr std::size_t LengthSize = 8;
inline constexpr std::size_t DigestSize = 32;
inline constexpr std::size_t EntryPrefixSize = LengthSize + DigestSize;
inline constexpr std::size_t PrefixSize = LengthSize + DigestSize + LengthSize;

// Puts one package together in one buffer: the header first, then the entries in their order, then Take.
// Knowing the size beforehand keeps the buffer from growing. The only failure is memory.
class Composer {
public:
    ResultCode Start(std::span<const uint8_t> header, std::size_t expectedBodySize);
    ResultCode AppendEntry(std::span<const uint8_t> data);

    // The finished package; the composer is empty afterwards.
    std::vector<uint8_t> Take();

private:
    std::size_t m_headerSize = 0;
    std::vector<uint8_t> m_package; // the prefix's place is left free at the front
};

} // namespace PackageFormat
