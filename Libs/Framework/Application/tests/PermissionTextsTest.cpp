#include "Libs/Framework/Application/src/PermissionTexts.h"

#include <gtest/gtest.h>

#include "Libs/Framework/Application/src/PermissionLanguage.h"

namespace {

TEST(PermissionTexts, TakesOneStringOutOfABlock) {
    const std::wstring block = std::wstring(L"\0", 1) + L"\3one" + L"\2zw" + std::wstring(13, L'\0');
    const auto string = [&](unsigned place) {
        return std::wstring(PermissionTexts::StringInBlock(block, place).value_or(L"none"));
    };
    EXPECT_EQ(string(0), L"none");
    EXPECT_EQ(string(1), L"one");
    EXPECT_EQ(string(2), L"zw");
    EXPECT_EQ(string(15), L"none");
    EXPECT_EQ(string(16), L"none");
}

TEST(PermissionTexts, ABlockCutShortHasNoString) {
    const std::wstring whole = L"\3one\2zw";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(PermissionTexts::StringInBlock({whole.data(), length}, 1)) << length;
    }
}

TEST(PermissionTexts, AModuleWithoutThemFails) {
    std::wstring text = L"kept";
    for (const uint16_t language : {uint16_t{0}, uint16_t{0x0407}}) {
        EXPECT_STREQ(PermissionTexts::Load(nullptr, language, 103, text).Text(),
                     "Failed to load locale string");
    }
    EXPECT_EQ(text, L"kept");
}

TEST(PermissionLanguage, IsOfTheSameLanguageOrScript) {
    const struct {
        const char* user;
        uint16_t identifier;
        uint16_t expected;
    } cases[] = {
        {"German: Germany", 0x0407, 0x0407},
        {"German: Austria", 0x0c07, 0x0407},
        {"German: no region", 0x0007, 0x0407},
        {"English: United States", 0x0409, 0x0409},
        {"English: United Kingdom", 0x0809, 0x0409},
        {"Spanish: traditional sorting", 0x040a, 0x040a},
        {"Spanish: modern sorting", 0x0c0a, 0x040a},
        {"Spanish: Mexico", 0x080a, 0x040a},
        {"French: Canada", 0x0c0c, 0x040c},
        {"Italian: Switzerland", 0x0810, 0x0410},
        {"Japanese", 0x0411, 0x0411},
        {"Korean", 0x0412, 0x0412},
        {"Polish", 0x0415, 0x0415},
        {"Portuguese: Brazil", 0x0416, 0x0416},
        {"Portuguese: Portugal", 0x0816, 0x0416},
        {"Russian: Moldova", 0x0819, 0x0419},
        {"Chinese: China", 0x0804, 0x0804},
        {"Chinese: Singapore", 0x1004, 0x0804},
        {"Chinese: simplified", 0x0004, 0x0804},
        {"Chinese: traditional", 0x7c04, 0x7c04},
        {"Chinese: Taiwan", 0x0404, 0x7c04},
        {"Chinese: Hong Kong", 0x0c04, 0x7c04},
        {"Chinese: Macao", 0x1404, 0x7c04},
        {"Dutch", 0x0413, 0},
        {"Turkish", 0x041f, 0},
        {"one without a number", 0x1000, 0},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(PermissionLanguageFor(row.identifier), row.expected) << row.user;
    }
}

} // namespace
