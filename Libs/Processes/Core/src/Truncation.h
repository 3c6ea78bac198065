#pragma once

#include <cstdint>
#include <vector>

// Cuts the middle out of bytes and puts a banner in its place that names both sizes. About limit bytes and
// the banner remain: 1000 bytes cut to 600 keep the bytes 0 to 299 and 700 to 999. The place of the cut is
// computed in single precision, so that for large sizes it is a little off the middle. A limit not under the
// size changes nothing. May throw std::bad_alloc when the banner is longer than what was cut out.
void TruncateAroundMiddle(std::vector<uint8_t>& bytes, uint64_t limit);

// The bytes that the cut takes out, from begin up to end.
struct TruncationCut {
    uint64_t begin = 0;
    uint64_t end = 0;
    bool operator==(const TruncationCut&) const = default;
};

// Never reaches past size. limit is at most size.
TruncationCut ComputeTruncationCut(uint64_t size, uint64_t limit);
