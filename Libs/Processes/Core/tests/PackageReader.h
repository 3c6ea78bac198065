#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <zlib.h>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

// Takes packages apart for tests, by the format's page and not by the code that writes them.
namespace TestSupport {

inline std::string Digest(std::string_view text) {
    return Crypto::MD5OfBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

// Empty when the bytes are no whole gzip stream.
inline std::string Gunzip(std::string_view bytes) {
    z_stream stream = {};
    if (inflateInit2(&stream, 31) != Z_OK) {
        return "";
    }
    std::string input(bytes);
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    std::string text;
    int result = Z_OK;
    while (result == Z_OK) {
        char buffer[4096];
        stream.next_out = reinterpret_cast<Bytef*>(buffer);
        stream.avail_out = sizeof(buffer);
        result = inflate(&stream, Z_NO_FLUSH);
        text.append(buffer, sizeof(buffer) - stream.avail_out);
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END ? text : "";
}

struct ReadPackage {
    std::string header;
    std::vector<std::string> entries; // as they are stored
};

// Checks every length and digest on the way.
inline ReadPackage TakeApart(const std::string& package) {
    ReadPackage result;
    const auto length = [&](std::size_t at) {
        return at + 8 <= package.size() ? std::stoull(package.substr(at, 8), nullptr, 16) : 0;
    };
    EXPECT_GE(package.size(), 48U);
    if (package.size() < 48) {
        return result;
    }
    EXPECT_EQ(length(0), package.size() - 48);
    EXPECT_EQ(package.substr(8, 32), Digest(std::string_view(package).substr(48)));
    result.header = package.substr(48, length(40));
    for (std::size_t at = 48 + length(40); at < package.size();) {
        const std::size_t size = length(at);
        if (at + 40 + size > package.size()) {
            ADD_FAILURE() << "an entry passes the end";
            break;
        }
        result.entries.push_back(package.substr(at + 40, size));
        EXPECT_EQ(package.substr(at + 8, 32), Digest(result.entries.back()));
        at += 40 + size;
    }
    return result;
}

} // namespace TestSupport
