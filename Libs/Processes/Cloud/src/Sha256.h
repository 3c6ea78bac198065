#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// SHA-256 by the operating system, as request signing needs it. Any thread.
namespace Sha256 {

using Digest = std::array<uint8_t, 32>;

// Nothing when the system's hashing fails, or takes no more: inputs are below 4 GiB.
[[nodiscard]] std::optional<Digest> HashOf(std::span<const uint8_t> bytes);
[[nodiscard]] std::optional<Digest> HashOf(std::string_view text);

// HMAC with this hash.
[[nodiscard]] std::optional<Digest> KeyedHashOf(std::span<const uint8_t> key, std::string_view text);

// 64 lower-case digits.
[[nodiscard]] std::string ToHex(const Digest& digest);

} // namespace Sha256
