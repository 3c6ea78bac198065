#include "Libs/Framework/Core/src/Gzip.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

using Bytes = std::vector<uint8_t>;

// Noise with all 256 values; with few it compresses as text does.
Bytes Random(std::size_t size, unsigned values = 256) {
    std::mt19937 random(7);
    Bytes bytes(size);
    std::ranges::generate(bytes, [&] { return static_cast<uint8_t>((random() >> 8) % values); });
    return bytes;
}

PlatformHelpers::GzipSink AppendTo(Bytes& bytes) {
    return [&](std::span<const uint8_t> piece) {
        bytes.insert(bytes.end(), piece.begin(), piece.end());
        return Platform::Success;
    };
}

Bytes Compressed(const Bytes& content) {
    Bytes compressed;
    Platform::MemorySource source(content);
    EXPECT_STREQ(PlatformHelpers::Compress(source, AppendTo(compressed)).Text(), "OK");
    return compressed;
}

// Returns the result's text; unpacks into content as far as the stream allows.
std::string Unpack(const Bytes& input, Bytes& content) {
    PlatformHelpers::InflateProgress progress;
    content.clear();
    Bytes around = {0x1F}; // what lies around the stream does not count
    around.insert(around.end(), input.begin(), input.end());
    around.push_back(0x8B);
    Platform::MemorySource source(around);
    const ResultCode result =
        PlatformHelpers::Decompress(source, 1, input.size(), UINT64_MAX, AppendTo(content), progress);
    EXPECT_EQ(progress.produced, content.size());
    return result.Text();
}

// The settings, not only the format: zlib's one-call form with the same ones gives the same body. Without a
// time, and with a file system that does not depend on where it runs, the header is the same everywhere.
TEST(Compress, BytesAreTheSameEverywhere) {
    Bytes input = Random(400000, 9);
    Bytes expected(input.size());
    z_stream stream = {};
    ASSERT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, 31, 9, Z_DEFAULT_STRATEGY), Z_OK);
    stream.next_in = input.data();
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = expected.data();
    stream.avail_out = static_cast<uInt>(expected.size());
    ASSERT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    expected.resize(stream.total_out);
    deflateEnd(&stream);
    std::ranges::copy(Bytes{0x1F, 0x8B, 8, 0, 0, 0, 0, 0, 2, 11}, expected.begin());
    EXPECT_EQ(Compressed(input), expected);
}

TEST(Decompress, GivesBackWhatWasCompressed) {
    Bytes content;
    for (const std::size_t size : {1u, 65536u, 131071u, 131072u, 131073u, 262144u, 1000000u}) {
        for (const auto& input : {Random(size), Random(size, 9), Bytes(size)}) {
            EXPECT_EQ(Unpack(Compressed(input), content), "OK") << size;
            ASSERT_EQ(content, input) << size;
        }
    }
}

TEST(Decompress, TakesStreamsInARowAsOneContent) {
    Bytes content;
    const Bytes big = Random(65535); // a piece of the input ends within the second stream's first bytes
    Bytes row;
    Bytes expected;
    for (const Bytes& next : {Bytes{'a', 'b'}, Bytes{'c'}, big, big}) {
        std::ranges::copy(Compressed(next), std::back_inserter(row));
        std::ranges::copy(next, std::back_inserter(expected));
    }
    EXPECT_EQ(Unpack(row, content), "OK");
    EXPECT_EQ(content, expected);
    row.push_back(0);
    EXPECT_EQ(Unpack(row, content), "Other bytes follow the gzip stream");
}

TEST(Decompress, RefusesEveryShorterOrChangedStream) {
    const Bytes whole = Compressed(Random(300));
    Bytes content;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes shorter(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(Unpack(shorter, content),
                  size < 2 ? "Not a gzip stream" : "The gzip stream ends too early");
        Bytes changed = whole;
        changed[size] = static_cast<uint8_t>(changed[size] ^ 0xFF);
        if (size >= 10) { // the header's flags and time may change without harm
            EXPECT_NE(Unpack(changed, content), "OK") << size;
        }
    }
}

TEST(Decompress, StopsWhenTheSinkRefuses) {
    int calls = 0;
    PlatformHelpers::InflateProgress progress;
    const auto refuse = [&](auto) {
        ++calls;
        return ResultCode("No");
    };
    const Bytes stream = Compressed(Bytes(1 << 20));
    Platform::MemorySource source(stream);
    EXPECT_FALSE(PlatformHelpers::Decompress(source, 0, stream.size(), 2 << 20, refuse, progress));
    EXPECT_EQ(calls, 1);
}

} // namespace
