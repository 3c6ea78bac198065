#include "Libs/Processes/Cloud/src/S3Endpoint.h"

#include <algorithm>
#include <charconv>

#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace {

bool IsLowerOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsAlphanumeric(char c) {
    return IsLowerOrDigit(c) || (c >= 'A' && c <= 'Z');
}

template <class Accepts>
bool AllOf(std::string_view text, std::size_t longest, Accepts accepts) {
    return !text.empty() && text.size() <= longest && std::all_of(text.begin(), text.end(), accepts);
}

// Old buckets may have capitals and underscores. What would change the path's meaning is refused.
bool IsBucketName(std::string_view bucket) {
    return bucket != "." && bucket != ".." &&
           AllOf(bucket, 255, [](char c) { return IsAlphanumeric(c) || c == '.' || c == '-' || c == '_'; });
}

bool IsRegion(std::string_view region) {
    return AllOf(region, 63, [](char c) { return IsAlphanumeric(c) || c == '-'; });
}

// Comes between "Credential=" and "/" in a header whose parts are separated by commas.
bool IsAccessKey(std::string_view key) {
    return AllOf(key, 255, [](char c) { return c > ' ' && c < 0x7f && c != '/' && c != ','; });
}

bool IsHostName(std::string_view host) {
    if (host.empty() || host.size() > 253) {
        return false;
    }
    std::size_t start = 0;
    while (start <= host.size()) {
        const std::size_t end = std::min(host.find('.', start), host.size());
        const std::string_view label = host.substr(start, end - start);
        if (!AllOf(label, 63, [](char c) { return IsAlphanumeric(c) || c == '-' || c == '_'; })) {
            return false;
        }
        start = end + 1;
    }
    return true;
}

// "[::1]". Connecting checks the digits.
bool IsBracketedAddress(std::string_view host) {
    if (host.size() < 4 || host.front() != '[' || host.back() != ']') {
        return false;
    }
    const std::string_view address = host.substr(1, host.size() - 2);
    return std::count(address.begin(), address.end(), ':') >= 2 && AllOf(address, 45, [](char c) {
               return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == ':' || c == '.';
           });
}

// A name whose last label is a number counts as an IPv4 address, well-formed or not.
bool IsAddress(std::string_view host) {
    return host.front() == '[' || AllOf(host.substr(host.rfind('.') + 1), 253, IsDigit);
}

bool ParsePort(std::string_view text, uint16_t& port) {
    if (!AllOf(text, 5, IsDigit)) {
        return false;
    }
    uint32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    port = static_cast<uint16_t>(number);
    return number >= 1 && number <= 65535;
}

bool ParseOverride(std::string_view text, S3Endpoint& endpoint) {
    const std::size_t schemeEnd = text.find("://");
    if (schemeEnd == std::string_view::npos) {
        return false;
    }
    const std::string scheme = String::LowerAscii(text.substr(0, schemeEnd));
    if (scheme != "http" && scheme != "https") {
        return false;
    }
    endpoint.secure = scheme == "https";
    endpoint.port = endpoint.secure ? 443 : 80;
    std::string_view authority = text.substr(schemeEnd + 3);
    if (authority.ends_with('/')) {
        authority.remove_suffix(1);
    }
    const std::size_t bracket = authority.find(']');
    const std::size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    if (colon != std::string_view::npos) {
        if (!ParsePort(authority.substr(colon + 1), endpoint.port)) {
            return false;
        }
        authority = authority.substr(0, colon);
    }
    endpoint.host = String::LowerAscii(authority);
    return IsHostName(endpoint.host) || IsBracketedAddress(endpoint.host);
}

S3Endpoint AmazonEndpoint(const std::string& region) {
    S3Endpoint endpoint;
    endpoint.host = "s3." + String::LowerAscii(region) + ".amazonaws.com";
    if (region.starts_with("cn-")) {
        endpoint.host += ".cn"; // China's regions have their own domain
    }
    return endpoint;
}

} // namespace

std::string S3Endpoint::HostHeader() const {
    return port == (secure ? 443 : 80) ? host : host + ":" + std::to_string(port);
}

bool IsDnsLabel(std::string_view text) {
    return AllOf(text, 63, [](char c) { return IsLowerOrDigit(c) || c == '-'; }) && text.front() != '-' &&
           text.back() != '-';
}

ResultCode ResolveS3Endpoint(const ObjectStoreConfig& config, S3Endpoint& endpoint) {
    if (!IsBucketName(config.bucket)) {
        return "Bucket name is not valid";
    }
    if (!IsRegion(config.region)) {
        return "Region is not valid";
    }
    if (!IsAccessKey(config.accessKey)) {
        return "Access key is not valid";
    }
    S3Endpoint resolved;
    if (config.endpointOverride.empty()) {
        resolved = AmazonEndpoint(config.region);
    } else if (!ParseOverride(config.endpointOverride, resolved)) {
        return "Endpoint override is not a scheme, a host and a port";
    }
    resolved.bucketInHost =
        config.useVirtualAddressing && IsDnsLabel(config.bucket) && !IsAddress(resolved.host);
    if (resolved.bucketInHost) {
        resolved.host = config.bucket + "." + resolved.host;
    } else {
        resolved.bucketPath = "/" + config.bucket + "/";
    }
    endpoint = std::move(resolved);
    return Platform::Success;
}

ObjectStoreConfig StoreOf(const UploaderS3Config& config) {
    ObjectStoreConfig store;
    store.endpointOverride = config.endpointOverride;
    store.region = config.region;
    store.useVirtualAddressing = config.useVirtualAddressing;
    store.bucket = config.bucketName;
    store.accessKey = config.accessKey;
    store.secretKey = config.secretKey;
    return store;
}
