#include "Libs/Framework/Application/src/PermissionTexts.h"

#include <gtest/gtest.h>

TEST(PermissionTexts, LanguageIsTheSameInAnyRegion) {
    const struct {
        const char* user;
        uint16_t identifier;
        uint16_t expected;
    } rows[] = {
        {"German: Austria", 0x0c07, 0x0407},     {"German: no region", 0x0007, 0x0407},
        {"Spanish: modern", 0x0c0a, 0x040a},     {"Chinese: Singapore", 0x1004, 0x0804},
        {"Chinese: simplified", 0x0004, 0x0804}, {"Chinese: traditional", 0x7c04, 0x7c04},
        {"Chinese: Macao", 0x1404, 0x7c04},      {"no language", 0x1000, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PermissionTexts::LanguageFor(row.identifier), row.expected) << row.user;
    }
}
