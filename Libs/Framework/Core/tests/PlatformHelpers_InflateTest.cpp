#include "Libs/Framework/Core/src/PlatformHelpers_Inflate.h"

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"

namespace {

constexpr uint64_t NoLimit = std::numeric_limits<uint64_t>::max();

std::vector<uint8_t> Compressed(const std::vector<uint8_t>& content) {
    std::vector<uint8_t> compressed;
    EXPECT_TRUE(PlatformHelpers::Compress(content, compressed).Succeeded());
    return compressed;
}

std::vector<uint8_t> Noise(std::size_t size) {
    std::vector<uint8_t> bytes(size);
    uint32_t state = 1;
    for (uint8_t& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(state >> 24);
    }
    return bytes;
}

struct Unpacked {
    std::string result;
    std::vector<uint8_t> content;
    PlatformHelpers::InflateProgress progress;
};

Unpacked Unpack(const std::vector<uint8_t>& input, uint64_t limit = NoLimit) {
    Unpacked unpacked;
    const ResultCode result = PlatformHelpers::Decompress(
        input, limit,
        [&](std::span<const uint8_t> piece) {
            unpacked.content.insert(unpacked.content.end(), piece.begin(), piece.end());
            return true;
        },
        unpacked.progress);
    unpacked.result = result.Text();
    return unpacked;
}

TEST(Decompress, GivesBackWhatWasCompressed) {
    for (const std::size_t size : {1U, 1000U, 65536U, 400000U}) {
        SCOPED_TRACE(size);
        const std::vector<uint8_t> content = Noise(size);
        const Unpacked unpacked = Unpack(Compressed(content));
        EXPECT_EQ(unpacked.result, "OK");
        EXPECT_EQ(unpacked.content, content);
        EXPECT_EQ(unpacked.progress.produced, size);
    }
}

TEST(Decompress, TakesStreamsInARowAsOneContent) {
    std::vector<uint8_t> row = Compressed({'a', 'b'});
    const std::vector<uint8_t> second = Compressed({'c'});
    row.insert(row.end(), second.begin(), second.end());
    EXPECT_EQ(Unpack(row).content, (std::vector<uint8_t>{'a', 'b', 'c'}));
    row.push_back(0);
    EXPECT_EQ(Unpack(row).result, "Other bytes follow the gzip stream");
}

TEST(Decompress, RefusesEveryShorterStream) {
    const std::vector<uint8_t> whole = Compressed(Noise(300));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        const Unpacked unpacked = Unpack({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
        EXPECT_EQ(unpacked.result, size < 2 ? "Not a gzip stream" : "The gzip stream ends too early");
    }
}

TEST(Decompress, NoticesEveryChangedByteOfContentAndTrailer) {
    const std::vector<uint8_t> whole = Compressed(Noise(300));
    constexpr std::size_t HeaderSize = 10; // flags and time there may change without harm
    for (std::size_t at = HeaderSize; at < whole.size(); ++at) {
        SCOPED_TRACE(at);
        std::vector<uint8_t> changed = whole;
        changed[at] = static_cast<uint8_t>(changed[at] ^ 0xFF);
        EXPECT_NE(Unpack(changed).result, "OK");
    }
}

TEST(Decompress, StopsAtTheLimit) {
    const std::vector<uint8_t> bomb = Compressed(std::vector<uint8_t>(10 << 20));
    const Unpacked stopped = Unpack(bomb, 100000);
    EXPECT_EQ(stopped.result, "The unpacked content is over the limit");
    EXPECT_LE(stopped.content.size(), 100000U);
    EXPECT_EQ(Unpack(bomb, 10 << 20).result, "OK");
}

TEST(Decompress, EndsWhenTheSinkRefuses) {
    int calls = 0;
    PlatformHelpers::InflateProgress progress;
    const ResultCode result = PlatformHelpers::Decompress(
        Compressed(Noise(400000)), NoLimit,
        [&](std::span<const uint8_t>) {
            ++calls;
            return false;
        },
        progress);
    EXPECT_STREQ(result.Text(), "The unpacked content was refused");
    EXPECT_EQ(calls, 1);
}

} // namespace
