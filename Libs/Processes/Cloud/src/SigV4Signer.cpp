#include "Libs/Processes/Cloud/src/SigV4Signer.h"

#include <algorithm>

#include "Libs/Processes/Cloud/src/Sha256.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace SigV4 {

namespace {

constexpr char Algorithm[] = "AWS4-HMAC-SHA256";

bool IsUnreserved(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

// Without blanks at the ends, and one blank for each inner run of them.
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

// Binds the secret to a day, a region and a service; what leaks later is worth no more than that.
std::optional<Sha256::Digest> SigningKey(const std::string& secretKey, const Scope& scope) {
    const std::string start = "AWS4" + secretKey;
    const std::span startBytes(reinterpret_cast<const uint8_t*>(start.data()), start.size());
    std::optional<Sha256::Digest> key = Sha256::KeyedHashOf(startBytes, DayOf(scope));
    for (const std::string_view part : {std::string_view(scope.region), std::string_view(scope.service),
                                        std::string_view("aws4_request")}) {
        if (key) {
            key = Sha256::KeyedHashOf(*key, part);
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

std::string CanonicalRequest(const Request& request) {
    const std::vector<HttpHeader> headers = CanonicalHeaders(request.headers);
    std::string text = request.method + "\n" + request.path + "\n" + request.query + "\n";
    for (const HttpHeader& header : headers) {
        text += header.name + ":" + header.value + "\n";
    }
    return text + "\n" + SignedNames(headers) + "\n" + request.payloadHash;
}

std::string StringToSign(const Scope& scope, std::string_view canonicalRequestHash) {
    std::string text = std::string(Algorithm) + "\n" + scope.timestamp + "\n" + ScopeText(scope) + "\n";
    return text.append(canonicalRequestHash);
}

std::optional<std::string> Authorization(const Request& request, const Credentials& credentials,
                                         const Scope& scope) {
    const auto requestHash = Sha256::HashOf(CanonicalRequest(request));
    const auto key = SigningKey(credentials.secretKey, scope);
    if (!requestHash || !key) {
        return std::nullopt;
    }
    const auto signature = Sha256::KeyedHashOf(*key, StringToSign(scope, Sha256::ToHex(*requestHash)));
    if (!signature) {
        return std::nullopt;
    }
    return std::string(Algorithm) + " Credential=" + credentials.accessKey + "/" + ScopeText(scope) +
           ", SignedHeaders=" + SignedNames(CanonicalHeaders(request.headers)) +
           ", Signature=" + Sha256::ToHex(*signature);
}

} // namespace SigV4
