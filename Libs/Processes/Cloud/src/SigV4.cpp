#include "Libs/Processes/Cloud/src/SigV4.h"

#include <algorithm>
#include <array>
#include <span>

#include <windows.h>
// bcrypt.h needs windows.h first
#include <bcrypt.h>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Handle.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace SigV4 {

namespace {

constexpr char Algorithm[] = "AWS4-HMAC-SHA256";

using Digest = std::array<uint8_t, 32>;
using Platform::BytesOf;

// BCRYPT_SHA256_ALG_HANDLE and BCRYPT_HMAC_SHA256_ALG_HANDLE, which not every compiler's header has.
constexpr uintptr_t Sha256 = 0x41;
constexpr uintptr_t HmacSha256 = 0xb1;

constexpr ResultCode HashFailed = "The system's hashing fails";

BCRYPT_ALG_HANDLE HandleOf(uintptr_t algorithm) {
    // The system hands its algorithms out as numbers. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<BCRYPT_ALG_HANDLE>(algorithm);
}

// The interface takes inputs as writable and leaves them alone.
PUCHAR Input(std::span<const uint8_t> bytes) {
    return const_cast<PUCHAR>(bytes.data());
}

bool CloseHash(void* hash) {
    return BCRYPT_SUCCESS(BCryptDestroyHash(hash));
}

std::optional<Digest> Hmac(std::span<const uint8_t> key, std::span<const uint8_t> bytes) {
    Digest digest;
    const bool isHashed = BCRYPT_SUCCESS(
        BCryptHash(HandleOf(HmacSha256), Input(key), static_cast<ULONG>(key.size()), Input(bytes),
                   static_cast<ULONG>(bytes.size()), digest.data(), static_cast<ULONG>(digest.size())));
    return isHashed ? std::optional(digest) : std::nullopt;
}

bool IsUnreserved(char c) {
    return String::IsAlphanumeric(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

// Without blanks at the ends; each inner run of blanks becomes one.
std::string CanonicalValue(std::string_view value) {
    std::string text;
    for (const char c : value) {
        const bool blank = c == ' ' || c == '\t';
        if (!blank) {
            text += c;
        } else if (!text.empty() && text.back() != ' ') {
            text += ' ';
        }
    }
    if (text.ends_with(' ')) {
        text.pop_back();
    }
    return text;
}

std::vector<HttpHeader> CanonicalHeaders(const std::vector<HttpHeader>& headers) {
    std::vector<HttpHeader> canonical;
    canonical.reserve(headers.size());
    for (const HttpHeader& header : headers) {
        canonical.push_back({String::LowerAscii(header.name), CanonicalValue(header.value)});
    }
    std::sort(canonical.begin(), canonical.end(),
              [](const HttpHeader& left, const HttpHeader& right) { return left.name < right.name; });
    return canonical;
}

// "host;x-amz-date"
std::string SignedNames(const std::vector<HttpHeader>& canonical) {
    std::string names;
    for (const HttpHeader& header : canonical) {
        names += (names.empty() ? "" : ";") + header.name;
    }
    return names;
}

std::string DayOf(const Scope& scope) {
    return scope.timestamp.substr(0, 8);
}

std::string ScopeText(const Scope& scope) {
    return DayOf(scope) + "/" + scope.region + "/" + scope.service + "/aws4_request";
}

std::string CanonicalRequest(const Request& request, const std::vector<HttpHeader>& canonicalHeaders) {
    std::string text = request.method + "\n" + request.path + "\n" + request.query + "\n";
    for (const HttpHeader& header : canonicalHeaders) {
        text += header.name + ":" + header.value + "\n";
    }
    return text + "\n" + SignedNames(canonicalHeaders) + "\n" + request.payloadHash;
}

// Binds the secret to a day, a region and a service: a signing key that leaks is worth no more than that.
std::optional<Digest> SigningKey(const std::string& secretKey, const Scope& scope) {
    std::optional<Digest> key = Hmac(BytesOf("AWS4" + secretKey), BytesOf(DayOf(scope)));
    for (const std::string_view part : {std::string_view(scope.region), std::string_view(scope.service),
                                        std::string_view("aws4_request")}) {
        if (key) {
            key = Hmac(*key, BytesOf(part));
        }
    }
    return key;
}

} // namespace

std::string EncodePath(std::string_view path) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(path.size());
    for (const char c : path) {
        if (IsUnreserved(c) || c == '/') {
            encoded += c;
        } else {
            const auto byte = static_cast<uint8_t>(c);
            encoded += {'%', Digits[byte >> 4], Digits[byte & 15]};
        }
    }
    return encoded;
}

std::optional<std::string> HashOf(Platform::ByteSource& bytes) {
    BCRYPT_HASH_HANDLE opened = nullptr;
    if (!BCRYPT_SUCCESS(BCryptCreateHash(HandleOf(Sha256), &opened, nullptr, 0, nullptr, 0, 0))) {
        return std::nullopt;
    }
    const Platform::Handle<CloseHash> hash(opened);
    Digest digest;
    const ResultCode hashed =
        Platform::ForEachPiece(bytes, 0, bytes.GetSize(), [&](auto piece) -> ResultCode {
            const auto count = static_cast<ULONG>(piece.size());
            return BCRYPT_SUCCESS(BCryptHashData(opened, Input(piece), count, 0)) ? Platform::Success
                                                                                  : HashFailed;
        });
    const bool isHashed = hashed && BCRYPT_SUCCESS(BCryptFinishHash(opened, digest.data(),
                                                                    static_cast<ULONG>(digest.size()), 0));
    return isHashed ? std::optional(Crypto::ToHex(digest)) : std::nullopt;
}

std::optional<std::string> Authorization(const Request& request, const Credentials& credentials,
                                         const Scope& scope) {
    const std::vector<HttpHeader> headers = CanonicalHeaders(request.headers);
    const std::string canonicalRequest = CanonicalRequest(request, headers);
    Platform::MemorySource requestBytes(BytesOf(canonicalRequest));
    const auto requestHash = HashOf(requestBytes);
    const auto key = SigningKey(credentials.secretKey, scope);
    if (!requestHash || !key) {
        return std::nullopt;
    }
    const std::string stringToSign =
        std::string(Algorithm) + "\n" + scope.timestamp + "\n" + ScopeText(scope) + "\n" + *requestHash;
    const auto signature = Hmac(*key, BytesOf(stringToSign));
    if (!signature) {
        return std::nullopt;
    }
    return std::string(Algorithm) + " Credential=" + credentials.accessKey + "/" + ScopeText(scope) +
           ", SignedHeaders=" + SignedNames(headers) + ", Signature=" + Crypto::ToHex(*signature);
}

} // namespace SigV4
