#include "Libs/Processes/Cloud/src/S3Endpoint.h"

#include <optional>
#include <utility>

#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace {

using String::AllOf;
using String::IsAlphanumeric;
using String::LowerAscii;

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

// Lower-case letters, digits and inner hyphens; 1 to 63 of them.
bool IsDnsLabel(std::string_view text) {
    return AllOf(text, 63, [](char c) { return c == '-' || (IsAlphanumeric(c) && c == LowerAscii(c)); }) &&
           text.front() != '-' && text.back() != '-';
}

HttpAddress AmazonAddress(const std::string& region) {
    HttpAddress address;
    address.host = "s3." + LowerAscii(region) + ".amazonaws.com";
    if (region.starts_with("cn-")) {
        address.host += ".cn"; // China's regions have their own domain
    }
    return address;
}

} // namespace

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
        resolved.address = AmazonAddress(config.region);
    } else {
        std::optional<HttpAddress> address = HttpAddress::Parse(config.endpointOverride);
        if (!address || address->target != "/") {
            return "Endpoint override is not a scheme, a host and a port";
        }
        resolved.address = std::move(*address);
    }
    resolved.bucketInHost =
        config.useVirtualAddressing && IsDnsLabel(config.bucket) && !resolved.address.IsNumeric();
    if (resolved.bucketInHost) {
        resolved.address.host = config.bucket + "." + resolved.address.host;
    } else {
        resolved.address.target = "/" + config.bucket + "/";
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
