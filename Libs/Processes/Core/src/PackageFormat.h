#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The layout of a package (see docs/formats.md).
namespace PackageFormat {

inline constexpr std::size_t LengthSize = 8;
inline constexpr std::size_t DigestSize = 32;
inline constexpr std::size_t EntryPrefixSize = LengthSize + DigestSize;
inline constexpr std::size_t PrefixSize = LengthSize + DigestSize + LengthSize;

// Lengths are eight hexadecimal digits. Whoever makes a package refuses what is longer.
inline constexpr uint64_t MaxLength = 0xFFFFFFFF;
inline constexpr char LengthDigits[] = "0123456789ABCDEF";

// Takes bytes of a package and their place in it.
using Target = std::function<ResultCode(uint64_t offset, std::span<const uint8_t> bytes)>;

// Composes one package in pieces. Every byte is given to target in order, except for the prefix, which comes
// last. A failure of the target ends the composing.
class Composer {
public:
    explicit Composer(Target target) : m_target(std::move(target)) {}

    // First, and once.
    ResultCode AppendHeader(std::span<const uint8_t> header);

    // The data is hashed while it is written, after the digest that it should have. If it has another one,
    // the entry is given to target once more.
    ResultCode AppendEntry(Platform::ByteSource& data, std::string digest);

    // Last; gives the package's size.
    ResultCode Finish(uint64_t& size);

private:
    ResultCode Append(std::span<const uint8_t> bytes);
    ResultCode AppendEntryAs(const std::string& digest, Platform::ByteSource& data, std::string& actual);

    Target m_target;
    Crypto::MD5 m_body;
    uint64_t m_end = PrefixSize; // where the next byte goes
    uint64_t m_headerSize = 0;
};

} // namespace PackageFormat
