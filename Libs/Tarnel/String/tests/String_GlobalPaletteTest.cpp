#include "Libs/Tarnel/String/src/String_GlobalPalette.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/OnThreads.h"

using String::Global;

TEST(GlobalPalette, KeepsTextsOfEqualIdentityApart) {
    EXPECT_EQ(Global("costarring").Id(), Global("liquid").Id());
    EXPECT_STREQ(Global("costarring").Text(), "costarring");
    EXPECT_STREQ(Global("liquid").Text(), "liquid");
    EXPECT_EQ(Global("costarring"), Global("costarring"));
    EXPECT_EQ(String::GlobalID(nullptr).Value(), 0xFFFFFFFF);
}

// Texts of 1024 bytes and more are formatted on the heap.
TEST(GlobalPalette, GivesAllThreadsTheSameNodes) {
    std::vector<std::vector<const char*>> texts(4);
    TestSupport::OnThreads(4, [&texts](int t) {
        for (int length = 1; length < 1100; ++length) {
            const Global text = String::FormatGlobal("%*d", length, 7);
            EXPECT_EQ(text.View(), std::string(static_cast<std::size_t>(length) - 1, ' ') + "7");
            texts[static_cast<std::size_t>(t)].push_back(text.Text());
        }
    });
    EXPECT_EQ(texts, std::vector(4, texts[0]));
}
