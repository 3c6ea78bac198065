// What was compressed comes back, and a stream of unknown origin gives no byte beyond its limit.
#include <limits>

#include "Libs/Framework/Core/src/Gzip.h"
#include "tests/fuzz/Fuzz.h"

namespace {

auto AppendTo(std::string& text) {
    return [&](std::span<const uint8_t> piece) {
        text += Fuzz::Text(piece);
        return Platform::Success;
    };
}

bool Unpack(std::span<const uint8_t> stream, uint64_t limit, std::string& content) {
    PlatformHelpers::InflateProgress progress;
    Platform::MemorySource source(stream);
    const bool isWhole =
        PlatformHelpers::Decompress(source, 0, stream.size(), limit, AppendTo(content), progress).Succeeded();
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
    std::string stream;
    again.clear();
    Platform::MemorySource source(input);
    if (PlatformHelpers::Compress(source, AppendTo(stream))) {
        FUZZ_REQUIRE(Unpack(Fuzz::Bytes(stream), std::numeric_limits<uint64_t>::max(), again));
    }
    FUZZ_REQUIRE(again == Fuzz::Text(input));
}
