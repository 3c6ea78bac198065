#include "Libs/Processes/Core/src/PackageFormat.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <utility>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

namespace PackageFormat {

namespace {

void WriteLength(uint8_t* target, std::size_t length) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    auto rest = static_cast<uint32_t>(length);
    for (std::size_t i = LengthSize; i-- > 0; rest >>= 4) {
        target[i] = static_cast<uint8_t>(Digits[rest & 0xF]);
    }
}

void WriteDigest(uint8_t* target, std::span<const uint8_t> bytes) {
    std::memcpy(target, Crypto::MD5OfBytes(bytes).data(), DigestSize);
}

} // namespace

Composer::Composer(std::span<const uint8_t> header, std::size_t expectedBodySize)
    : m_headerSize(header.size()) {
    m_package.reserve(PrefixSize + std::max(expectedBodySize, header.size()));
    m_package.resize(PrefixSize);
    m_package.insert(m_package.end(), header.begin(), header.end());
}

void Composer::AppendEntry(std::span<const uint8_t> data) {
    uint8_t prefix[EntryPrefixSize];
    WriteLength(prefix, data.size());
    WriteDigest(prefix + LengthSize, data);
    m_package.insert(m_package.end(), std::begin(prefix), std::end(prefix));
    m_package.insert(m_package.end(), data.begin(), data.end());
}

std::vector<uint8_t> Composer::Take() {
    const std::span<const uint8_t> body = std::span(m_package).subspan(PrefixSize);
    WriteLength(m_package.data(), body.size());
    // Like the length, of the low 32 bits.
    WriteDigest(m_package.data() + LengthSize, body.first(static_cast<uint32_t>(body.size())));
    WriteLength(m_package.data() + LengthSize + DigestSize, m_headerSize);
    return std::exchange(m_package, {});
}

} // namespace PackageFormat
