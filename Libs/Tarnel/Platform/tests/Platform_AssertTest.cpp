#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_AssertReport.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_AssertState.h"
#include "tests/support/AssertCapture.h"
#include "tests/support/OnThreads.h"

using Platform::AssertKind;

namespace {

bool Fail(bool& ignoreAlways, AssertKind kind = AssertKind::Assert, const char* message = "message") {
    return Platform::AssertFailed("expression", message, "unit", 7, &ignoreAlways, kind);
}

} // namespace

TEST(AssertReport, WordsEachKind) {
    const Platform::LocalTime time{2020, 6, 9, 7, 3, 5};
    const Platform::AssertFailure failure{AssertKind::Assert, "Libs/A", 12, "a > b", "too small"};
    Platform::AssertFailure dataError = failure;
    dataError.kind = AssertKind::DataError;
    const struct {
        const Platform::AssertFailure& failure;
        bool debugger;
        const char* text;
    } rows[] = {
        {failure, false,
         "Assert Failed\r\n\r\nFile:  Libs/A\r\nLine:  12\r\nExpression:  a > b\r\nMessage:  too small\r\n"
         "Time: 6/9/2020  7:03:05\r\n\r\n"},
        {dataError, true,
         "Data Error Occurred\r\n\r\nFile:  Libs/A\r\nLine:  12\r\nExpression:  a > b\r\n"
         "Message:\r\n\r\n\ttoo small\r\n\r\n"},
        {dataError, false, "too small"},
    };
    for (const auto& row : rows) {
        char report[1024];
        Platform::FormatAssertReport(report, sizeof(report), row.failure, time, row.debugger);
        EXPECT_STREQ(row.text, report);
    }
    char tiny[8];
    Platform::FormatAssertReport(tiny, sizeof(tiny), failure, time, false);
    EXPECT_STREQ("Assert ", tiny);
}

TEST(Assert, AnswersDecideTheSitesFlag) {
    const struct {
        int answer;
        bool breaks;
        bool flagBefore;
        bool flagAfter;
    } rows[] = {
        {Platform::AssertAnswer_Debug, true, false, false},
        {Platform::AssertAnswer_IgnoreOnce, false, true, false},
        {Platform::AssertAnswer_IgnoreAlways, false, false, true},
    };
    for (const auto& row : rows) {
        const AssertCapture capture(row.answer);
        bool ignoreAlways = row.flagBefore;
        EXPECT_EQ(row.breaks, Fail(ignoreAlways)) << row.answer;
        EXPECT_EQ(row.flagAfter, ignoreAlways) << row.answer;
    }
}

TEST(Assert, UnknownAnswerIsRecordedAndGoesOn) {
    const AssertCapture capture(99);
    bool ignoreAlways = false;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Fail(ignoreAlways));
    const std::string output = testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, output.find("ASSERT")) << output;
    EXPECT_NE(std::string::npos, output.find("Unknown return from DisplayAssertDialog 99")) << output;
}

TEST(Assert, MacroNamesItsPlaceAndFallsSilentWhenIgnoredAlways) {
    const AssertCapture capture(Platform::AssertAnswer_IgnoreAlways);
    int line = 0;
    for (int i = 0; i < 3; ++i) {
        line = __LINE__ + 1;
        PLATFORM_ASSERT_TEXT_MESSAGE(i < 0, "a < b", "Round %d of %s", i, "three");
    }
    ASSERT_EQ(1u, capture.Failures().size());
    const AssertCapture::Failure& failure = capture.Failures()[0];
    EXPECT_EQ("Libs/Tarnel/Platform/tests/Platform_AssertTest", failure.sourceUnit);
    EXPECT_EQ(line, failure.line);
    EXPECT_EQ("a < b|Round 0 of three", capture.Texts()[0]);
}

TEST(Assert, DataErrorsGoToTheirOwnHandler) {
    const AssertCapture capture;
    PLATFORM_DATA_ERROR(2 < 1, "Bad number %d", 2);
    PLATFORM_ASSERT(2 < 1);
    ASSERT_EQ(2u, capture.Failures().size());
    EXPECT_EQ(1, capture.Failures()[0].kind);
    EXPECT_EQ(0, capture.Failures()[1].kind);
    EXPECT_EQ((std::vector<std::string>{"2 < 1|Bad number 2", "2 < 1|"}), capture.Texts());
}

TEST(Assert, LongMessagesAreCutAt2047Bytes) {
    const AssertCapture capture;
    PLATFORM_ASSERT_MESSAGE(false, "%s", std::string(5000, 'x').c_str());
    ASSERT_EQ(1u, capture.Failures().size());
    EXPECT_EQ(std::string(2047, 'x'), capture.Failures()[0].message);
}

TEST(Assert, WithEverythingOffTheSiteTakesTheDefault) {
    const AssertCapture capture;
    Platform::AssertState& state = *EXP_GetAssertState();
    state.showDialogs = 0;
    std::strcpy(state.report, "untouched");
    for (const bool byDefault : {true, false}) {
        state.defaultIgnoreAlways = byDefault;
        bool ignoreAlways = !byDefault;
        EXPECT_FALSE(Fail(ignoreAlways));
        EXPECT_EQ(byDefault, ignoreAlways);
    }
    EXPECT_STREQ("untouched", state.report);
    EXPECT_TRUE(capture.Failures().empty());
}

TEST(Assert, RecordGoesToStandardErrorAsTheSwitchesSay) {
    const AssertCapture capture;
    Platform::AssertState& state = *EXP_GetAssertState();
    const struct {
        AssertKind kind;
        uint32_t writeToLog;
        uint32_t logDataErrors;
        const char* tag; // null: no record
    } rows[] = {
        {AssertKind::Assert, 1, 0, "\t ASSERT File=unit Line=7 Expression=expression Message=message\n"},
        {AssertKind::Assert, 0, 1, nullptr},
        {AssertKind::DataError, 1, 1,
         "\t DATA ERROR File=unit Line=7 Expression=expression Message=message\n"},
        {AssertKind::DataError, 1, 0, nullptr},
    };
    for (const auto& row : rows) {
        state.writeToLog = row.writeToLog;
        state.logDataErrors = row.logDataErrors;
        testing::internal::CaptureStderr();
        bool ignoreAlways = false;
        EXPECT_FALSE(Fail(ignoreAlways, row.kind));
        std::string output = testing::internal::GetCapturedStderr();
        std::erase(output, '\r');
        if (row.tag) {
            EXPECT_NE(std::string::npos, output.find(row.tag)) << output;
        } else {
            EXPECT_EQ("", output);
        }
    }
    state.logDataErrors = 1;
}

TEST(Assert, CheckInsideAHandlerIsIgnoredOnce) {
    const AssertCapture capture;
    static int s_calls = 0;
    s_calls = 0;
    EXP_GetAssertState()->handlers[0] = [](const char*, int, const char*, const char*) {
        ++s_calls;
        PLATFORM_ASSERT_MESSAGE(false, "inside the handler");
        return static_cast<int>(Platform::AssertAnswer_IgnoreAlways);
    };
    bool ignoreAlways = false;
    EXPECT_FALSE(Fail(ignoreAlways));
    EXPECT_TRUE(ignoreAlways);
    EXPECT_EQ(1, s_calls);
    EXPECT_EQ(0u, EXP_GetAssertState()->asking);
}

TEST(Assert, ThreadsAreServedOneAtATime) {
    constexpr int Threads = 4;
    constexpr int Rounds = 200;
    const AssertCapture capture;
    static std::atomic<int> s_inside = 0;
    static std::atomic<int> s_overlaps = 0;
    static std::atomic<int> s_calls = 0;
    s_calls = 0;
    EXP_GetAssertState()->handlers[0] = [](const char*, int, const char*, const char*) {
        s_overlaps += s_inside++;
        std::this_thread::yield();
        --s_inside;
        ++s_calls;
        return static_cast<int>(Platform::AssertAnswer_IgnoreOnce);
    };
    TestSupport::OnThreads(Threads, [](int) {
        for (int i = 0; i < Rounds; ++i) {
            PLATFORM_ASSERT(i < 0);
        }
    });
    EXPECT_EQ(Threads * Rounds, s_calls);
    EXPECT_EQ(0, s_overlaps);
}

TEST(Assert, BugStateCountsAndNamesTheLast) {
    const AssertCapture capture;
    Platform::BugState& bugs = *EXP_GetBugState();
    const uint32_t asserts = bugs.failedCount[0];
    const uint32_t dataErrors = bugs.failedCount[1];
    bool ignoreAlways = false;
    const std::string longText(1000, 'e');
    EXPECT_FALSE(Platform::AssertFailed("x", nullptr, "first", 1, &ignoreAlways, AssertKind::Assert));
    EXPECT_FALSE(Platform::AssertFailed(longText.c_str(), nullptr, longText.c_str(), 2, &ignoreAlways,
                                        AssertKind::DataError));
    EXPECT_EQ(asserts + 1, bugs.failedCount[0]);
    EXPECT_EQ(dataErrors + 1, bugs.failedCount[1]);
    EXPECT_EQ(1, bugs.lastKind);
    EXPECT_EQ(2, bugs.lastLine);
    EXPECT_EQ(longText.substr(0, sizeof(bugs.lastSourceUnit) - 1), bugs.lastSourceUnit);
    EXPECT_EQ(longText.substr(0, sizeof(bugs.lastExpression) - 1), bugs.lastExpression);
}

TEST(AssertDeathTest, AbortEndsTheProcessWithExitCode1) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const AssertCapture capture(Platform::AssertAnswer_Abort);
            PLATFORM_ASSERT_MESSAGE(false, "the end");
            std::_Exit(42);
        },
        testing::ExitedWithCode(1), "");
}
