#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// gzip in pieces: memory does not grow with the content. Never throws by itself.
namespace PlatformHelpers {

// Takes the next piece of the output, which is gone after the call; a failure ends the work with that
// failure.
using GzipSink = std::function<ResultCode(std::span<const uint8_t> piece)>;

// Hands the gzip form of the whole input to sink. The same input gives the same bytes on every system: the
// header carries no time and always names the same file system. An empty input is a failure. After a failure
// sink has had a part. Uses 256 KB of the caller's stack.
ResultCode Compress(Platform::ByteSource& input, const GzipSink& sink);

// How far a decompression came, in bytes.
struct InflateProgress {
    uint64_t consumed = 0; // of the input
    uint64_t produced = 0;
};

// Hands sink the content of a gzip file: the size bytes of input from offset on. Several gzip streams in a
// row are one content. Checks each stream's length and check sum. Stops before the content gets longer than
// limit, so that a small input can't fill a disk. After a failure progress has the place in the input, and
// what sink took so far must not be used as the content. Uses 128 KB of the caller's stack.
ResultCode Decompress(Platform::ByteSource& input, uint64_t offset, uint64_t size, uint64_t limit,
                      const GzipSink& sink, InflateProgress& progress);

} // namespace PlatformHelpers
