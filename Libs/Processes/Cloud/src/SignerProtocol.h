#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Processes/Cloud/src/HttpAddress.h"
#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"

// What an agent without a key and the studio's signer say to each other. The agent posts
//   {"Key": "<32 hex digits>", "Size": 5, "ContentMD5": "<base64>"}
// and the signer answers with an address that takes this one package for some minutes:
//   {"Url": "https://...", "Headers": {"Content-Type": "application/octet-stream"}}
// All of an answer is checked here, before anything of it is used. Any thread; no state. All may throw
// std::bad_alloc.
namespace SignerProtocol {

inline constexpr std::size_t LargestAnswer = std::size_t{64} << 10; // bytes

// An address to which packages, or questions about them, may go: https, or http to this machine itself.
[[nodiscard]] std::optional<HttpAddress> ParseAddress(std::string_view url);

// The settings that name the signer. The refusals begin with the key that is wrong.
ResultCode CheckSettings(const UploaderPresignedConfig& config);

[[nodiscard]] std::string Question(const PutObjectRequest& request);

struct SignedPut {
    HttpAddress address;
    std::vector<HttpHeader> headers; // without those that each PUT has: Host, Content-Length, Content-MD5
};

// Refuses every answer of another form, other addresses, and headers that could end the request or say how it
// is cut. Further members are ignored. So are the headers that each PUT has: they are the agent's own,
// whatever the signer says.
ResultCode ReadAnswer(std::string_view text, SignedPut& put);

} // namespace SignerProtocol
