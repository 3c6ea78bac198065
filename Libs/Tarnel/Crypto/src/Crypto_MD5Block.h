#pragma once

#include <cstddef>
#include <cstdint>

namespace Crypto {

// Runs the MD5 compression function over count blocks of 64 bytes, read where they lie (no alignment needed).
void MD5Blocks(uint32_t (&state)[4], const uint8_t* data, std::size_t count);

} // namespace Crypto
