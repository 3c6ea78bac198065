#include "Libs/Framework/Application/src/Utf8Arguments.h"

#include <gtest/gtest.h>

namespace {

TEST(Utf8Arguments, SplitsAndConverts) {
    const auto arguments = Utf8Arguments(LR"("C:\Program Files\agent.exe" -log=C:\Jörg\太郎 "a b" "" 😀)");
    const std::vector<std::string> expected = {R"(C:\Program Files\agent.exe)", R"(-log=C:\Jörg\太郎)", "a b",
                                               "", "😀"};
    EXPECT_EQ(arguments, expected);
}

TEST(Utf8Arguments, KeepsWhatFitsOfALongArgument) {
    const auto lengthOf = [](std::size_t characters, wchar_t character) {
        const auto arguments = Utf8Arguments((L"agent.exe " + std::wstring(characters, character)).c_str());
        return arguments.size() == 2 ? arguments[1].size() : 0;
    };
    EXPECT_EQ(lengthOf(4095, L'a'), 4095u);
    EXPECT_EQ(lengthOf(4096, L'a'), 4095u);
    EXPECT_EQ(lengthOf(8000, L'a'), 4095u);
    EXPECT_EQ(lengthOf(2047, L'ä'), 4094u);
    EXPECT_LE(lengthOf(8000, L'ä'), 4095u);
}

TEST(Utf8Arguments, SurvivesAnUnpairedSurrogate) {
    const wchar_t commandLine[] = {L'a', L' ', L'x', 0xD800, L'y', 0};
    const auto arguments = Utf8Arguments(commandLine);
    ASSERT_EQ(arguments.size(), 2u);
    EXPECT_EQ(arguments[1], "x\xEF\xBF\xBDy");
}

} // namespace
