#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

namespace PlatformHelpers {

// Appends the gzip form of the whole input to output. The same input gives the same bytes on every system:
// the header carries no time and always names the same file system. An empty input is a failure. After a
// failure the output keeps what was appended until then. Uses 128 KB of the caller's stack.
ResultCode Compress(std::span<const uint8_t> input, std::vector<uint8_t>& output);

} // namespace PlatformHelpers
