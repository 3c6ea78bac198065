#pragma once

#include <cstddef>

namespace JsonSerialization {

// A text is looked through by blocks: of a loop of a fixed length over masks of one byte the compiler makes a
// few vector instructions, where the C runtime of some systems looks at one byte after the other.
inline constexpr std::size_t BlockSize = 256; // bytes

inline unsigned char MaskOf(bool value) {
    return value ? 0xFF : 0;
}

inline bool BlockHolds(const char* block, char wanted) {
    unsigned char found = 0;
    for (std::size_t i = 0; i < BlockSize; ++i) {
        found = static_cast<unsigned char>(found | MaskOf(block[i] == wanted));
    }
    return found != 0;
}

// The pair may begin with the block's last byte: one byte more is read.
inline bool BlockHoldsPair(const char* block, char first, char second) {
    unsigned char found = 0;
    for (std::size_t i = 0; i < BlockSize; ++i) {
        found =
            static_cast<unsigned char>(found | (MaskOf(block[i] == first) & MaskOf(block[i + 1] == second)));
    }
    return found != 0;
}

} // namespace JsonSerialization
