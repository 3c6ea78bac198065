#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Processes/Cloud/src/HttpAddress.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"

// Signature Version 4: proves to the store that a request comes from the holder of the secret key and was not
// changed. The secret enters nothing but the signature. Hashing is the operating system's. Any thread; all
// may throw std::bad_alloc.
namespace SigV4 {

// The x-amz-content-sha256 of a body that only the transport protects.
inline constexpr char UnsignedPayload[] = "UNSIGNED-PAYLOAD";

struct Request {
    std::string method;
    std::string path;                // as sent: percent-encoded, with the leading slash
    std::string query;               // as signed: encoded, sorted, each key with its "="
    std::vector<HttpHeader> headers; // all are signed; each name once, in any order and case
    std::string payloadHash;         // HashOf the body, or UnsignedPayload
};

struct Credentials {
    std::string accessKey;
    std::string secretKey;
};

struct Scope {
    std::string timestamp; // UTC, "20130524T000000Z"; its first eight characters are the day
    std::string region;
    std::string service = "s3";
};

// Percent-encodes each byte but unreserved characters and slashes: "/a b/ü" becomes "/a%20b/%C3%BC". Dots and
// double slashes stay, since they are part of a key.
[[nodiscard]] std::string EncodePath(std::string_view path);

// SHA-256 in 64 lower-case digits. Nothing if the system's hashing fails or bytes can't be read.
[[nodiscard]] std::optional<std::string> HashOf(Platform::ByteSource& bytes);

// The value of the Authorization header. Nothing if the system's hashing fails.
[[nodiscard]] std::optional<std::string> Authorization(const Request& request, const Credentials& credentials,
                                                       const Scope& scope);

} // namespace SigV4
