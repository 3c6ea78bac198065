#include "Libs/Tarnel/String/src/String_Global.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Tarnel/String/src/String_Functions.h"
#include "tests/support/AssertCapture.h"
#include "tests/support/OnThreads.h"

using String::Global;
using String::GlobalID;

TEST(GlobalID, IsTheHashOfTheText) {
    const struct {
        const char* text;
        uint32_t identity;
    } rows[] = {{nullptr, 0xFFFFFFFF}, {"", 0x811C9DC5}, {"int8", 0x6491FA92}, {"Int8", 0xE4BE46B2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text ? row.text : "null");
        EXPECT_EQ(row.identity, GlobalID(row.text).Value());
    }
    EXPECT_EQ(GlobalID("int8"), GlobalID::OfText("int8"));
    EXPECT_NE(GlobalID("int8"), GlobalID("INT8"));
}

TEST(GlobalPalette, KeepsOneNodeForAText) {
    const std::string first = "same text";
    const std::string second = "same text";
    EXPECT_EQ(Global(first).Text(), Global(second).Text());
    EXPECT_NE(first.data(), Global(first).Text());
    EXPECT_EQ(&String::GetGlobalPalette(), EXP_GetStringPalette());
}

// Two words whose hashes are equal.
TEST(GlobalPalette, KeepsTextsOfEqualIdentityApart) {
    const Global costarring("costarring");
    const Global liquid("liquid");
    EXPECT_EQ(costarring.Id(), liquid.Id());
    EXPECT_FALSE(costarring == liquid);
    EXPECT_STREQ("costarring", costarring.Text());
    EXPECT_STREQ("liquid", liquid.Text());
    EXPECT_EQ(costarring, Global("costarring"));
    EXPECT_EQ(liquid, Global("liquid"));
}

TEST(GlobalPalette, TakesTextsOfEveryLength) {
    for (const std::size_t length : {0u, 1u, 7u, 8u, 15u, 16u, 1000u, 16384u, 100'000u}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        const Global interned(text);
        EXPECT_EQ(text, interned.View());
        EXPECT_EQ(0, interned.Text()[length]);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(interned.Text()) % 8);
    }
    EXPECT_NE(Global(std::string_view("a\0b", 3)), Global("a"));
}

TEST(GlobalPalette, ReportsANullTextWithALength) {
    const AssertCapture capture;
    EXPECT_NE(nullptr, String::GetGlobalPalette().Intern(nullptr, 3));
    EXPECT_EQ(std::vector<std::string>{"!\"sz || uiLength == 0\"|"}, capture.Texts());
}

TEST(GlobalPalette, GivesAllThreadsTheSameNodes) {
    constexpr int ThreadCount = 4;
    constexpr int TextCount = 2000;
    std::vector<std::vector<const char*>> texts(ThreadCount);
    TestSupport::OnThreads(ThreadCount, [&texts](int t) {
        for (int i = 0; i < TextCount; ++i) {
            texts[static_cast<std::size_t>(t)].push_back(String::FormatGlobal("thread text %i", i).Text());
        }
    });
    for (const auto& own : texts) {
        EXPECT_EQ(texts[0], own);
    }
    EXPECT_STREQ("thread text 1999", texts[0].back());
}

// The text moves from the stack to the heap at 1024 bytes.
TEST(FormatGlobal, TakesTextsOfEveryLength) {
    for (const std::size_t length : {1u, 1022u, 1023u, 1024u, 1025u, 5000u}) {
        const std::string text(length, 'y');
        EXPECT_EQ(text + "|7", String::FormatGlobal("%s|%i", text.c_str(), 7).View());
        EXPECT_EQ(text, String::FormatGlobal("%s", text.c_str()).View());
    }
}

TEST(FormatText, CutsToTheBufferAndReportsNull) {
    char buffer[6] = "?????";
    EXPECT_EQ(9, String::FormatText(buffer, sizeof(buffer), "%s-%d", "crash", 123));
    EXPECT_STREQ("crash", buffer);

    const AssertCapture capture;
    const char* const noFormat = nullptr;
    EXPECT_GT(0, String::FormatText(nullptr, 4, "%d", 1));
    EXPECT_GT(0, String::FormatText(buffer, sizeof(buffer), noFormat));
    EXPECT_EQ(std::vector<std::string>(2, "szBuffer && szFormat|"), capture.Texts());
}
