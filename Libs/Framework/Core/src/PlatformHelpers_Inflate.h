#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

namespace PlatformHelpers {

// How far a decompression came, in bytes.
struct InflateProgress {
    uint64_t consumed = 0; // of the input
    uint64_t produced = 0;
};

// Takes the next piece of the content, which is gone after the call; false ends the decompression.
using InflateSink = std::function<bool(std::span<const uint8_t> piece)>;

// Hands the content of a gzip file to sink, piece by piece; several gzip streams in a row are one content.
// Checks each stream's length and check sum. Stops before the content gets longer than limit, so that a small
// input can't fill a disk. After a failure progress tells the place in the input, and what sink took so far
// must not be used as the content. Never throws by itself.
ResultCode Decompress(std::span<const uint8_t> input, uint64_t limit, const InflateSink& sink,
                      InflateProgress& progress);

} // namespace PlatformHelpers
