#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

std::vector<uint8_t> Noise(std::size_t size) {
    std::mt19937 random(7);
    std::vector<uint8_t> bytes(size);
    for (uint8_t& byte : bytes) {
        byte = static_cast<uint8_t>(random() >> 24);
    }
    return bytes;
}

// Words in random order: compresses as a log file does.
std::vector<uint8_t> Prose(std::size_t size) {
    const std::string words[] = {"frame ", "module ", "thread\n", "0x7ff", "kernel32.dll ", "4711 "};
    std::mt19937 random(11);
    std::vector<uint8_t> bytes;
    while (bytes.size() < size) {
        const std::string& word = words[random() % std::size(words)];
        bytes.insert(bytes.end(), word.begin(), word.end());
    }
    bytes.resize(size);
    return bytes;
}

// The gzip stream's content, or nothing unless the stream is whole and ends with the last byte.
std::vector<uint8_t> Decompress(std::vector<uint8_t> packed, std::size_t expectedSize) {
    std::vector<uint8_t> plain(expectedSize + 1);
    z_stream stream = {};
    EXPECT_EQ(inflateInit2(&stream, 16 + MAX_WBITS), Z_OK); // gzip alone
    stream.next_in = packed.data();
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = plain.data();
    stream.avail_out = static_cast<uInt>(plain.size());
    const int ret = inflate(&stream, Z_FINISH);
    plain.resize(ret == Z_STREAM_END && stream.avail_in == 0 ? stream.total_out : 0);
    inflateEnd(&stream);
    return plain;
}

TEST(Compress, EmptyInputFailsAndAppendsNothing) {
    std::vector<uint8_t> output;
    EXPECT_STREQ(PlatformHelpers::Compress({}, output).Text(), "Failed to deflate file");
    EXPECT_TRUE(output.empty());
}

TEST(Compress, AnyGzipReaderGetsTheInputBack) {
    for (const std::size_t size : {1u, 131071u, 131072u, 131073u, 262144u, 1000000u}) {
        for (const auto& input : {Noise(size), Prose(size), std::vector<uint8_t>(size, 0)}) {
            SCOPED_TRACE(testing::Message() << size << " bytes, the first " << int{input[0]});
            std::vector<uint8_t> output = {1, 2, 3}; // what is there stays
            ASSERT_TRUE(PlatformHelpers::Compress(input, output).Succeeded());
            ASSERT_EQ(std::vector<uint8_t>(output.begin(), output.begin() + 3),
                      (std::vector<uint8_t>{1, 2, 3}));
            ASSERT_EQ(Decompress({output.begin() + 3, output.end()}, size), input);
        }
    }
}

// The settings, not only the format: zlib's one-call form with the same ones gives the same body. Without a
// time, and with a file system that does not depend on where it runs, the header is the same everywhere.
TEST(Compress, BytesAreTheSameEverywhere) {
    std::vector<uint8_t> input = Prose(400000);
    std::vector<uint8_t> expected(input.size());
    z_stream stream = {};
    ASSERT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, 31, 9, Z_DEFAULT_STRATEGY), Z_OK);
    stream.next_in = input.data();
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = expected.data();
    stream.avail_out = static_cast<uInt>(expected.size());
    ASSERT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    expected.resize(stream.total_out);
    deflateEnd(&stream);
    const std::vector<uint8_t> header = {0x1F, 0x8B, 8, 0, 0, 0, 0, 0, 2, 11};
    std::ranges::copy(header, expected.begin());

    std::vector<uint8_t> output;
    ASSERT_TRUE(PlatformHelpers::Compress(input, output).Succeeded());
    EXPECT_EQ(output, expected);
}

} // namespace
