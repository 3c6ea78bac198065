#include "Libs/Framework/Application/src/AnswerGuard.h"

#include <gtest/gtest.h>

TEST(AnswerGuard, AnswersCountAfterASecond) {
    constexpr uint64_t Start = uint64_t{1} << 33; // the system has run for months
    AnswerGuard guard;
    EXPECT_FALSE(guard.AcceptsClick(Start));
    guard.Shown(Start);
    guard.SetKeyboard(true, Start + 500);
    guard.SetKeyboard(true, Start + 900); // told again
    const struct {
        const char* when;
        uint64_t pressed;
        bool click;
        bool key;
    } rows[] = {
        {"before the dialog", Start - 100, false, false},
        {"too soon", Start + 999, false, false},
        {"in sight for a second", Start + 1000, true, false},
        {"with the keyboard for a second", Start + 1500, true, true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(guard.AcceptsClick(row.pressed), row.click) << row.when;
        EXPECT_EQ(guard.AcceptsKey(false, row.pressed), row.key) << row.when;
        EXPECT_FALSE(guard.AcceptsKey(true, row.pressed)) << "held down, " << row.when;
    }
    guard.SetKeyboard(false, Start + 5000);
    EXPECT_FALSE(guard.AcceptsKey(false, Start + 9000));
    EXPECT_TRUE(guard.AcceptsClick(Start + 9000));
    guard.SetKeyboard(true, Start + 9000);
    EXPECT_FALSE(guard.AcceptsKey(false, Start + 9999));
}
