// What is taken from a signer's answer is one address, https or of this machine, and headers of one line.
#include <algorithm>

#include "Libs/Processes/Cloud/src/SignerProtocol.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    const auto isPrintable = [](std::string_view text) {
        return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
    };
    SignerProtocol::SignedPut put;
    if (!SignerProtocol::ReadAnswer(Fuzz::Text(input), put)) {
        return;
    }
    const std::string& host = put.address.host;
    FUZZ_REQUIRE(put.address.secure || host == "localhost" || host == "[::1]" || host.starts_with("127."));
    FUZZ_REQUIRE(!host.empty() && isPrintable(host) && host.find_first_of(" /?#@\\") == std::string::npos);
    FUZZ_REQUIRE(put.address.target.starts_with('/') && isPrintable(put.address.target) &&
                 put.address.target.find(' ') == std::string::npos);
    for (const HttpHeader& header : put.headers) {
        FUZZ_REQUIRE(!header.name.empty() && isPrintable(header.name) && isPrintable(header.value) &&
                     header.name.find_first_of(" :") == std::string::npos);
    }
}
