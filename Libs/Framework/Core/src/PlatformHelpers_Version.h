#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace PlatformHelpers {

// The decimal number right behind the first "(": 1234 for "2.0.0.8 (1234)". Nothing without a bracket, or
// when no number of 32 bits follows it.
std::optional<uint32_t> ParseChangelist(std::string_view fileVersion);

} // namespace PlatformHelpers
