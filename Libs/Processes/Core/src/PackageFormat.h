#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The layout of a package (see docs/formats.md). Lengths are the low 32 bits in eight upper-case hexadecimal
// digits, so a body or entry of 4 GiB or more is written with a wrapped length.
namespace PackageFormat {

inline constexpr std::size_t LengthSize = 8;
inline constexpr std::size_t DigestSize = 32;
inline constexpr std::size_t EntryPrefixSize = LengthSize + DigestSize;
inline constexpr std::size_t PrefixSize = LengthSize + DigestSize + LengthSize;

// Composes one package in one buffer. May throw std::bad_alloc.
class Composer {
public:
    // The expected size only saves the buffer from growing.
    Composer(std::span<const uint8_t> header, std::size_t expectedBodySize);

    void AppendEntry(std::span<const uint8_t> data);

    // The finished package; call it last, and once.
    std::vector<uint8_t> Take();

private:
    std::size_t m_headerSize;
    std::vector<uint8_t> m_package; // the prefix, which Take fills in, then the body
};

} // namespace PackageFormat
