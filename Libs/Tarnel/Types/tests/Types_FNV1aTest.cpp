#include "Libs/Tarnel/Types/src/Types_FNV1a.h"

#include <gtest/gtest.h>

TEST(FNV1a, GivesThePublishedValues) {
    EXPECT_EQ(Types::FNV1a(""), 0x811C9DC5u);
    EXPECT_EQ(Types::FNV1a("foobar"), 0xBF9CF968u);
    EXPECT_EQ(Types::FNV1a("\xFF"), (0x811C9DC5u ^ 0xFFu) * 16777619u);
}

TEST(FNV1a, WideIsTheHashOfUtf16LowByteFirst) {
    EXPECT_EQ(Types::FNV1aWide(L"\u00F6\u592A"), Types::FNV1a(std::string_view("\xF6\x00\x2A\x59", 4)));
    // Beyond the basic plane: the surrogate pair D83D DE00.
    EXPECT_EQ(Types::FNV1aWide(L"\U0001F600"), Types::FNV1a(std::string_view("\x3D\xD8\x00\xDE", 4)));
}
