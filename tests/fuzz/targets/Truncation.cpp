// A cut file keeps its beginning and its end, and is no longer than the limit and the banner. The first four
// bytes are the limit.
#include <algorithm>
#include <vector>

#include "Libs/Processes/Core/src/AttachmentLimit.h"
#include "tests/fuzz/Fuzz.h"

namespace {

uint64_t TakeLimit(std::span<const uint8_t>& input) {
    uint64_t limit = 0;
    for (int i = 0; i < 4; ++i) {
        limit = limit << 8 | Fuzz::TakeByte(input);
    }
    return limit;
}

void CutSizes(uint64_t size, uint64_t limit) {
    const TruncationCut cut = ComputeTruncationCut(size, std::min(limit, size));
    FUZZ_REQUIRE(cut.begin <= cut.end && cut.end <= size);
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    uint64_t limit = TakeLimit(input);
    CutSizes(input.size() << 31 | limit, limit << 7);
    limit %= input.size() + 1;
    CutSizes(input.size(), limit);

    const TruncationCut cut = ComputeTruncationCut(input.size(), limit);
    std::vector<uint8_t> bytes(input.begin(), input.end());
    TruncateAroundMiddle(bytes, limit);
    if (limit == input.size()) {
        FUZZ_REQUIRE(std::equal(bytes.begin(), bytes.end(), input.begin(), input.end()));
        return;
    }
    const auto head = input.first(static_cast<std::size_t>(cut.begin));
    const auto tail = input.subspan(static_cast<std::size_t>(cut.end));
    const std::string_view left = Fuzz::Text(bytes);
    FUZZ_REQUIRE(left.starts_with(Fuzz::Text(head)) && left.ends_with(Fuzz::Text(tail)));
    FUZZ_REQUIRE(left.size() > head.size() + tail.size());
    FUZZ_REQUIRE(head.size() + tail.size() <= limit + 2);
}
