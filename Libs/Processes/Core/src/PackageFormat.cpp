#include "Libs/Processes/Core/src/PackageFormat.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <iterator>
#include <string>
#include <utility>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

namespace PackageFormat {

namespace {

constexpr char OutOfMemory[] = "Failed to allocate memory for package";

void WriteLength(uint8_t* target, std::size_t length) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    auto rest = static_cast<uint32_t>(length);
    for (std::size_t i = LengthSize; i-- > 0; rest >>= 4) {
        target[i] = static_cast<uint8_t>(Digits[rest & 0xF]);
    }
}

void WriteBodyDigest(uint8_t* target, std::span<const uint8_t> body) {
    char text[Crypto::MD5TextSize];
    Crypto::MD5OfBuffer(body.data(), static_cast<uint32_t>(body.size()), text, sizeof(text));
    std::memcpy(target, text, DigestSize);
}

} // namespace

ResultCode Composer::Start(std::span<const uint8_t> header, std::size_t expectedBodySize) {
    try {
        m_package.clear();
        m_package.reserve(PrefixSize + std::max(expectedBodySize, header.size()));
        m_package.resize(PrefixSize);
        m_package.insert(m_package.end(), header.begin(), header.end());
        m_headerSize = header.size();
        return Platform::Success;
    } catch (const std::exception&) { // no memory, or more than a vector can hold
        return OutOfMemory;
    }
}

ResultCode Composer::AppendEntry(std::span<const uint8_t> data) {
    try {
        uint8_t prefix[EntryPrefixSize];
        WriteLength(prefix, data.size());
        const std::string digest = Crypto::MD5OfBytes(data);
        std::memcpy(prefix + LengthSize, digest.data(), DigestSize);
        m_package.insert(m_package.end(), std::begin(prefix), std::end(prefix));
        m_package.insert(m_package.end(), data.begin(), data.end());
        return Platform::Success;
    } catch (const std::exception&) { // no memory, or more than a vector can hold
        return OutOfMemory;
    }
}

std::vector<uint8_t> Composer::Take() {
    if (m_package.size() < PrefixSize) {
        return {};
    }
    const std::span<const uint8_t> body = std::span(m_package).subspan(PrefixSize);
    WriteLength(m_package.data(), body.size());
    WriteBodyDigest(m_package.data() + LengthSize, body);
    WriteLength(m_package.data() + LengthSize + DigestSize, m_headerSize);
    return std::exchange(m_package, {});
}

} // namespace PackageFormat
