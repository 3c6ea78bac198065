#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The largest size in bytes of the files whose names end in extension. Case does not matter and no dot is
// implied: ".log" and "log" both end "game.LOG".
struct AttachmentLimit {
    std::string extension;
    uint64_t maxSize = 0;
};
Reflection_DeclareType(AttachmentLimit);

// True if any limit for this file is below its size.
bool IsAttachmentOverSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file,
                               uint64_t size);

// The first limit for this file, whatever its size. Without one an assertion is reported and 0 returned.
uint64_t FindAttachmentSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file);

// Truncates the bytes of a file that is over a limit, and over the first limit for it. One that is not is
// reported as an assertion and stays whole. May throw std::bad_alloc.
void TruncateToSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file,
                         std::vector<uint8_t>& attBytes);

// The stretch of bytes that truncation removes, from begin up to end.
struct TruncationCut {
    uint64_t begin = 0;
    uint64_t end = 0;
};

// The stretch around the middle, computed in single precision: for large sizes it is a little off the middle.
// Never reaches past size. limit must not exceed size.
TruncationCut ComputeTruncationCut(uint64_t size, uint64_t limit);

// Replaces the stretch by a banner that names both sizes, so that limit bytes and the banner remain: of 1000
// bytes cut to 600, the bytes 0 to 299 and 700 to 999. A limit of at least the size changes nothing. May
// throw std::bad_alloc if the banner is longer than the stretch.
void TruncateAroundMiddle(std::vector<uint8_t>& bytes, uint64_t limit);
