#include "Libs/Processes/Cloud/src/S3Upload.h"

#include <algorithm>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

ResultCode PutPackage(IObjectStore& store, std::span<const uint8_t> package) {
    std::string eTag;
    if (!store.PutObject(RequestForPackage(package), eTag)) {
        return "Failed to put stream in S3 bucket";
    }
    // Hashed again, so that the check covers the bytes as they are after sending. A tag that is unquoted, in
    // upper case or of several parts ("...-2") comes from a store that hashed something else.
    if (eTag != "\"" + Crypto::MD5OfBytes(package) + "\"") {
        return "MD5 of stream received by S3 doesn't match the MD5 we computed locally";
    }
    return Platform::Success;
}

PutObjectRequest RequestForPackage(std::span<const uint8_t> package) {
    const Crypto::MD5Digest digest = Crypto::MD5DigestOf(package);
    PutObjectRequest request;
    request.key = Crypto::ToHex(digest);
    request.contentMd5 = Base64Encode(digest);
    request.contentType = "application/octet-stream";
    request.contentLength = AnnouncedLength(package.size());
    request.body = package;
    return request;
}

int64_t AnnouncedLength(std::size_t packageSize) {
    return static_cast<int32_t>(static_cast<uint32_t>(packageSize)); // deliberately narrowed, see the header
}

std::string Base64Encode(std::span<const uint8_t> bytes) {
    static constexpr char Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        uint32_t group = 0; // three bytes, the missing ones zero
        for (std::size_t j = 0; j < 3; ++j) {
            group = group << 8 | (j < count ? bytes[i + j] : 0u);
        }
        for (std::size_t j = 0; j < 4; ++j) {
            text += j <= count ? Digits[group >> (18 - 6 * j) & 63] : '=';
        }
    }
    return text;
}
