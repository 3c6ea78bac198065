#include "Libs/Processes/Core/src/PackageFormat.h"

#include <cstring>

namespace PackageFormat {

namespace {

void WriteLength(uint8_t* target, uint64_t length) {
    for (std::size_t i = LengthSize; i-- > 0; length >>= 4) {
        target[i] = static_cast<uint8_t>(LengthDigits[length & 0xF]);
    }
}

} // namespace

ResultCode Composer::Append(std::span<const uint8_t> bytes) {
    RETURN_IF_FAILED(m_target(m_end, bytes));
    m_body.Update(bytes);
    m_end += bytes.size();
    return Platform::Success;
}

ResultCode Composer::AppendHeader(std::span<const uint8_t> header) {
    m_headerSize = header.size();
    return Append(header);
}

ResultCode Composer::AppendEntry(Platform::ByteSource& data, std::string digest) {
    digest.resize(DigestSize, '0'); // the caller need not know it
    const Crypto::MD5 bodyBefore = m_body;
    const uint64_t start = m_end;
    std::string actual;
    RETURN_IF_FAILED(AppendEntryAs(digest, data, actual));
    if (actual == digest) {
        return Platform::Success;
    }
    m_body = bodyBefore;
    m_end = start;
    RETURN_IF_FAILED(AppendEntryAs(actual, data, digest));
    return actual == digest ? Platform::Success : Platform::ReadFailure; // it is being changed
}

ResultCode Composer::AppendEntryAs(const std::string& digest, Platform::ByteSource& data,
                                   std::string& actual) {
    uint8_t prefix[EntryPrefixSize];
    WriteLength(prefix, data.GetSize());
    std::memcpy(prefix + LengthSize, digest.data(), DigestSize);
    RETURN_IF_FAILED(Append(prefix));
    Crypto::MD5 md5;
    RETURN_IF_FAILED(Platform::ForEachPiece(data, 0, data.GetSize(), [&](auto piece) {
        md5.Update(piece);
        return Append(piece);
    }));
    actual = Crypto::DigestText(md5);
    return Platform::Success;
}

ResultCode Composer::Finish(uint64_t& size) {
    uint8_t prefix[PrefixSize];
    WriteLength(prefix, m_end - PrefixSize);
    std::memcpy(prefix + LengthSize, Crypto::DigestText(m_body).data(), DigestSize);
    WriteLength(prefix + LengthSize + DigestSize, m_headerSize);
    size = m_end;
    return m_target(0, prefix);
}

} // namespace PackageFormat
