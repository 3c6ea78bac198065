// An endpoint that is accepted can stand in a request as it is. Four lines: override, bucket, region, key.
#include <algorithm>

#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "tests/fuzz/Fuzz.h"

namespace {

// Nothing that ends a header, a line of a request, a host or a path.
bool CanStandInHost(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               std::string_view("-_.:[]").find(c) != std::string_view::npos;
    });
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    std::string_view text = Fuzz::Text(input);
    ObjectStoreConfig config;
    config.endpointOverride = Fuzz::TakeLine(text);
    config.bucket = Fuzz::TakeLine(text);
    config.region = Fuzz::TakeLine(text);
    config.accessKey = Fuzz::TakeLine(text);
    for (const bool isVirtual : {false, true}) {
        config.useVirtualAddressing = isVirtual;
        S3Endpoint endpoint;
        if (!ResolveS3Endpoint(config, endpoint)) {
            continue;
        }
        FUZZ_REQUIRE(CanStandInHost(endpoint.host) && CanStandInHost(endpoint.HostHeader()));
        FUZZ_REQUIRE(endpoint.port != 0);
        FUZZ_REQUIRE(isVirtual || !endpoint.bucketInHost);
        FUZZ_REQUIRE(endpoint.bucketInHost ? endpoint.host.starts_with(config.bucket + ".")
                                           : endpoint.bucketPath == "/" + config.bucket + "/");
        FUZZ_REQUIRE(endpoint.bucketPath.find_first_of("?#% \r\n") == std::string::npos);
        FUZZ_REQUIRE(endpoint.bucketPath.find("/../") == std::string::npos);
    }
}
