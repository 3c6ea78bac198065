#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/AssertCapture.h"

namespace {

std::string TextOf(const Crypto::MD5& md5) {
    char text[Crypto::MD5TextSize];
    Crypto::MD5ToText(md5.Digest(), text, sizeof text);
    return text;
}

std::string DigestOf(const std::string& message) {
    char text[Crypto::MD5TextSize];
    Crypto::MD5OfBuffer(message.data(), static_cast<uint32_t>(message.size()), text, sizeof text);
    return text;
}

std::vector<uint8_t> Pattern(std::size_t size) {
    std::vector<uint8_t> bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i * 131 + i / 7);
    }
    return bytes;
}

TEST(MD5, KnownDigests) {
    const struct {
        std::string message;
        const char* digest;
    } rows[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
        // the lengths at which the padding takes another block
        {std::string(55, 'x'), "04364420e25c512fd958a70738aa8f72"},
        {std::string(56, 'x'), "668a72d5ba17f08e62dabcafad6db14b"},
        {std::string(63, 'x'), "7dc2ca208106a2f703567bdff99d8981"},
        {std::string(64, 'x'), "c1bb4f81d892b2d57947682aeb252456"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DigestOf(row.message), row.digest) << row.message.size() << " bytes";
    }
}

TEST(MD5, PiecesOfEverySizeGiveTheDigestOfTheWhole) {
    const std::vector<uint8_t> bytes = Pattern(1000);
    Crypto::MD5 whole;
    whole.Update(bytes.data(), 1000);
    whole.Finish();
    for (uint32_t piece = 1; piece <= 200; ++piece) {
        Crypto::MD5 md5;
        for (uint32_t at = 0; at < 1000; at += piece) {
            md5.Update(bytes.data() + at, std::min(piece, 1000 - at));
        }
        md5.Finish();
        ASSERT_EQ(TextOf(md5), TextOf(whole)) << "pieces of " << piece;
    }
}

// 512 MiB are 2^32 bits: the low word of the length runs over.
TEST(MD5, LengthCarriesIntoTheHighWord) {
    const std::vector<uint8_t> zeros(1 << 20);
    Crypto::MD5 md5;
    for (int i = 0; i < 513; ++i) {
        md5.Update(zeros.data(), 1 << 20);
    }
    md5.Finish();
    EXPECT_EQ(TextOf(md5), "f3a8799d64129a6fd8a5aa56f199ac54");
}

TEST(MD5, FinishKeepsTheDigestAndWipesTheRest) {
    const std::string secret = "a message that must not stay in memory";
    Crypto::MD5 md5;
    md5.Update(secret.data(), static_cast<uint32_t>(secret.size()));
    EXPECT_FALSE(md5.IsFinished());
    md5.Finish();
    EXPECT_TRUE(md5.IsFinished());
    const std::string memory(reinterpret_cast<const char*>(&md5), sizeof md5);
    EXPECT_EQ(memory.find("message"), std::string::npos);

    const std::string digest = TextOf(md5);
    md5.Update("more", 4); // comes too late to count
    md5.Finish();
    EXPECT_EQ(TextOf(md5), digest);

    md5.Start();
    md5.Update("abc", 3);
    md5.Finish();
    EXPECT_EQ(TextOf(md5), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(MD5, BytesOfSeveralPiecesEqualOneUpdate) {
    const std::vector<uint8_t> bytes = Pattern((3 << 20) + 17);
    char once[Crypto::MD5TextSize];
    Crypto::MD5OfBuffer(bytes.data(), static_cast<uint32_t>(bytes.size()), once, sizeof once);
    EXPECT_EQ(Crypto::MD5OfBytes(bytes), once);
    EXPECT_EQ(Crypto::MD5OfBytes({}), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(MD5, TextNeedsRoomFor33Characters) {
    const AssertCapture asserts;
    char text[40];
    std::memset(text, '#', sizeof text);
    Crypto::MD5OfBuffer("abc", 3, text, 33);
    EXPECT_EQ(std::string(text, 34), std::string("900150983cd24fb0d6963f7d28e17f72\0#", 34));
    EXPECT_TRUE(asserts.Texts().empty());

    std::memset(text, '#', sizeof text);
    Crypto::MD5OfBuffer("abc", 3, text, 32);
    EXPECT_EQ(asserts.Texts(), std::vector<std::string>{"out_buffer_size >= 33|"});
    EXPECT_EQ(std::string(text, 33), std::string("900150983cd24fb0d6963f7d28e17f7\0#", 33));
    Crypto::MD5OfBuffer("abc", 3, nullptr, 0);
}

} // namespace
