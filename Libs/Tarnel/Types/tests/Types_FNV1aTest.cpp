#include "Libs/Tarnel/Types/src/Types_FNV1a.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Types/src/Types_Limits.h"

// Reference values of the published FNV test vectors.
TEST(FNV1a, PublishedVectors) {
    const struct {
        const char* text;
        uint32_t hash;
    } rows[] = {
        {"", 0x811C9DC5},
        {"a", 0xE40C292C},
        {"b", 0xE70C2DE5},
        {"foobar", 0xBF9CF968},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.hash, Types::FNV1a(row.text)) << row.text;
    }
    EXPECT_NE(Types::FNV1a("Name"), Types::FNV1a("name"));
}

TEST(FNV1a, WideIsTheHashOfUtf16LowByteFirst) {
    EXPECT_EQ(Types::FNV1a(std::string_view("a\0b\0", 4)), Types::FNV1aWide(L"ab"));
    EXPECT_EQ(Types::FNV1a(std::string_view("\xF6\x00\x2A\x59", 4)), Types::FNV1aWide(L"\u00F6\u592A"));
    // Beyond the basic plane: the surrogate pair D83D DE00.
    EXPECT_EQ(Types::FNV1a(std::string_view("\x3D\xD8\x00\xDE", 4)), Types::FNV1aWide(L"\U0001F600"));
    EXPECT_EQ(Types::FNV1aOffsetBasis, Types::FNV1aWide(L""));
}

TEST(FNV1a, BytesAboveAsciiAreUnsigned) {
    EXPECT_EQ((0x811C9DC5u ^ 0xFFu) * 16777619u, Types::FNV1a("\xFF"));
}

TEST(Limits, KeepTheirType) {
    EXPECT_EQ(INT8_MIN, Types::Limits<int8_t>::Min);
    EXPECT_EQ(UINT64_MAX, Types::Limits<uint64_t>::Max);
    EXPECT_LT(Types::Limits<double>::Min, 0.0);
    static_assert(sizeof(Types::Limits<uint16_t>::Max) == 2);
}
