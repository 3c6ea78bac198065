// What was compressed comes back; a stream of unknown origin gives no byte beyond its limit, and the limit is
// exact.
#include <limits>
#include <vector>

#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Inflate.h"
#include "tests/fuzz/Fuzz.h"

namespace {

struct Outcome {
    bool isWhole = false;
    uint64_t produced = 0;
};

Outcome Unpack(std::span<const uint8_t> stream, uint64_t limit, std::string* content = nullptr) {
    uint64_t taken = 0;
    PlatformHelpers::InflateProgress progress;
    const auto take = [&](std::span<const uint8_t> piece) {
        taken += piece.size();
        if (content) {
            *content += Fuzz::Text(piece);
        }
        return true;
    };
    const bool isWhole = PlatformHelpers::Decompress(stream, limit, take, progress).Succeeded();
    FUZZ_REQUIRE(progress.consumed <= stream.size());
    FUZZ_REQUIRE(taken == progress.produced && taken <= limit);
    FUZZ_REQUIRE(!isWhole || progress.consumed == stream.size());
    return {isWhole, progress.produced};
}

void UnpackForeign(std::span<const uint8_t> stream) {
    constexpr uint64_t Limit = 1 << 20;
    const Outcome outcome = Unpack(stream, Limit);
    if (outcome.isWhole) {
        FUZZ_REQUIRE(Unpack(stream, outcome.produced).isWhole);
        FUZZ_REQUIRE(outcome.produced == 0 || !Unpack(stream, outcome.produced - 1).isWhole);
    }
}

void CompressAndBack(std::span<const uint8_t> content) {
    std::vector<uint8_t> stream;
    std::string again;
    if (!PlatformHelpers::Compress(content, stream)) {
        FUZZ_REQUIRE(content.empty());
        return;
    }
    FUZZ_REQUIRE(Unpack(stream, std::numeric_limits<uint64_t>::max(), &again).isWhole);
    FUZZ_REQUIRE(again == Fuzz::Text(content));
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    UnpackForeign(input);
    CompressAndBack(input);
}
