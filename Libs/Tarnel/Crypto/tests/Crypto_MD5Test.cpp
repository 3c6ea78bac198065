#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

// The last lengths are those at which the padding needs another block.
TEST(MD5, GivesTheKnownDigests) {
    const struct {
        std::string message;
        const char* digest;
    } rows[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {std::string(55, 'x'), "04364420e25c512fd958a70738aa8f72"},
        {std::string(56, 'x'), "668a72d5ba17f08e62dabcafad6db14b"},
        {std::string(63, 'x'), "7dc2ca208106a2f703567bdff99d8981"},
        {std::string(64, 'x'), "c1bb4f81d892b2d57947682aeb252456"},
    };
    for (const auto& row : rows) {
        const std::vector<uint8_t> bytes(row.message.begin(), row.message.end());
        Crypto::MD5 whole;
        whole.Update(bytes);
        EXPECT_EQ(Crypto::DigestText(whole), row.digest) << bytes.size() << " bytes";
        Crypto::MD5 inPieces;
        for (const char c : row.message) {
            inPieces.Update(&c, 1);
        }
        EXPECT_EQ(Crypto::DigestText(inPieces), row.digest);
    }
}

// 512 MiB are 2^32 bits, so the low word of the length overflows.
TEST(MD5, CarriesTheLengthIntoTheHighWord) {
    const std::vector<uint8_t> zeros(1 << 20);
    Crypto::MD5 md5;
    for (int i = 0; i < 513; ++i) {
        md5.Update(zeros);
    }
    EXPECT_EQ(Crypto::DigestText(md5), "f3a8799d64129a6fd8a5aa56f199ac54");
}

TEST(MD5, TextNeedsRoomFor33Characters) {
    const AssertCapture asserts;
    std::string text(40, '#');
    Crypto::MD5OfBuffer("abc", 3, text.data(), 33);
    Crypto::MD5OfBuffer("abc", 3, text.data(), 32);
    EXPECT_EQ(text.substr(0, 33), std::string("900150983cd24fb0d6963f7d28e17f7\0\0", 33));
    EXPECT_EQ(asserts.Failures().size(), 1u);
}
