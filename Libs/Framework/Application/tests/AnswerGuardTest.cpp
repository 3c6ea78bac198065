#include "Libs/Framework/Application/src/AnswerGuard.h"

#include <gtest/gtest.h>

namespace {

constexpr unsigned Enter = 13;
constexpr unsigned Space = 32;
constexpr bool Repeated = true;

// A dialog that came up, with the keyboard, at tick `start`; the other times count from there.
class AnswerGuardTest : public testing::TestWithParam<uint32_t> {
protected:
    AnswerGuardTest() {
        m_guard.Shown(m_start);
        m_guard.SetForeground(true, m_start);
    }

    bool Press(unsigned key, uint32_t time, bool repeated = false) {
        return m_guard.AcceptsKey(key, repeated, m_start + time);
    }
    bool Click(uint32_t time) { return m_guard.AcceptsClick(m_start + time); }
    void SwitchTo(bool foreground, uint32_t time) { m_guard.SetForeground(foreground, m_start + time); }

    uint32_t m_start = GetParam();
    AnswerGuard m_guard;
};

TEST_P(AnswerGuardTest, AnswersCountAfterAWhile) {
    EXPECT_TRUE(Press(Enter, 1000));
    EXPECT_TRUE(Press(Enter, 1001));
    EXPECT_TRUE(Click(1000));
}

TEST_P(AnswerGuardTest, WhatComesSoonerIsDroppedUntilThereWasAPause) {
    EXPECT_FALSE(Press(Enter, 0));
    EXPECT_FALSE(Press(Enter, 999));
    EXPECT_FALSE(Press(Space, 1498));
    EXPECT_FALSE(Press(Enter, 1997));
    EXPECT_TRUE(Press(Enter, 2497));

    EXPECT_FALSE(Click(999));
    EXPECT_FALSE(Click(1498));
    EXPECT_TRUE(Click(1998));
}

TEST_P(AnswerGuardTest, InputFromBeforeTheDialogIsDropped) {
    EXPECT_FALSE(m_guard.AcceptsKey(Enter, false, m_start - 100));
    EXPECT_FALSE(m_guard.AcceptsClick(m_start - 100));
}

TEST_P(AnswerGuardTest, AKeyHeldDownSinceBeforeNeverAnswers) {
    for (uint32_t time = 0; time < 5000; time += 33) {
        EXPECT_FALSE(Press(Space, time, Repeated));
    }
    EXPECT_FALSE(Press(Enter, 5100));
    EXPECT_TRUE(Press(Enter, 5600));
    EXPECT_TRUE(Press(Enter, 6100, Repeated));
    EXPECT_FALSE(Press(Space, 6100, Repeated));
}

TEST_P(AnswerGuardTest, KeysCountOnlyForTheForegroundWindow) {
    SwitchTo(false, 2000);
    EXPECT_FALSE(Press(Enter, 9000));
    SwitchTo(true, 10000);
    SwitchTo(true, 10900); // told again
    EXPECT_FALSE(Press(Enter, 10999));
    EXPECT_TRUE(Press(Enter, 11499));
    EXPECT_TRUE(Click(10000)); // in sight all the time
}

INSTANTIATE_TEST_SUITE_P(TickCounts, AnswerGuardTest, testing::Values(1000000u, 0xFFFFFC00u, 0x7FFFFE00u));

} // namespace
