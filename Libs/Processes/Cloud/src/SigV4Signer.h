#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct HttpHeader {
    std::string name;
    std::string value;
};

// Signature Version 4, the store's proof that a request comes from the holder of the secret and was not
// changed. Pure functions; the secret goes into the signature alone. Any thread.
namespace SigV4 {

// The x-amz-content-sha256 of a body that only the transport protects.
inline constexpr char UnsignedPayload[] = "UNSIGNED-PAYLOAD";

struct Request {
    std::string method;
    std::string path;                // as it is sent, percent-encoded, with the leading slash
    std::string query;               // as it is signed: encoded, sorted, every key with its "="
    std::vector<HttpHeader> headers; // all of them are signed; each name once, in any order and case
    std::string payloadHash;         // hex SHA-256 of the body, or UnsignedPayload
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

// Encodes each byte but unreserved characters and slashes, once: "/a b/ü" becomes "/a%20b/%C3%BC". Dots and
// double slashes stay, since they are part of a key.
[[nodiscard]] std::string EncodePath(std::string_view path);

[[nodiscard]] std::string CanonicalRequest(const Request& request);

[[nodiscard]] std::string StringToSign(const Scope& scope, std::string_view canonicalRequestHash);

// The value of the Authorization header. Nothing when the system's hashing fails.
[[nodiscard]] std::optional<std::string> Authorization(const Request& request, const Credentials& credentials,
                                                       const Scope& scope);

} // namespace SigV4
