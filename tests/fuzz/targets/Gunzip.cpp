// What was compressed comes back, and a stream of unknown origin gives no byte beyond its limit.
#include <limits>
#include <vector>

#include "Libs/Framework/Core/src/Gzip.h"
#include "tests/fuzz/Fuzz.h"

namespace {

bool Unpack(std::span<const uint8_t> stream, uint64_t limit, std::string& content) {
    PlatformHelpers::InflateProgress progress;
    const auto take = [&](std::span<const uint8_t> piece) {
        content += Fuzz::Text(piece);
        return Platform::Success;
    };
    Platform::MemorySource source(stream);
    const bool isWhole =
        PlatformHelpers::Decompress(source, 0, stream.size(), limit, take, progress).Succeeded();
    FUZZ_REQUIRE(content.size() == progress.produced && progress.produced <= limit);
    FUZZ_REQUIRE(isWhole ? progress.consumed == stream.size() : progress.consumed <= stream.size());
    return isWhole;
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    std::string content;
    std::string again;
    if (Unpack(input, 1 << 20, content) && !content.empty()) {
        FUZZ_REQUIRE(!Unpack(input, content.size() - 1, again));
    }
    std::vector<uint8_t> stream;
    again.clear();
    Platform::MemorySource source(input);
    const auto keep = [&](std::span<const uint8_t> piece) {
        stream.insert(stream.end(), piece.begin(), piece.end());
        return Platform::Success;
    };
    if (PlatformHelpers::Compress(source, keep)) {
        FUZZ_REQUIRE(Unpack(stream, std::numeric_limits<uint64_t>::max(), again));
    }
    FUZZ_REQUIRE(again == Fuzz::Text(input));
}
