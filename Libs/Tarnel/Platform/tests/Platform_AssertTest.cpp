#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

using Platform::AssertKind;

namespace {

bool Fail(bool& ignoreAlways, AssertKind kind = AssertKind::Assert) {
    return Platform::AssertFailed("a > b", "too\nsmall", "unit", 7, &ignoreAlways, kind);
}

TEST(Assert, MacroNamesItsPlaceAndFallsSilentWhenIgnored) {
    const AssertCapture capture(Platform::AssertAnswer_IgnoreAlways);
    const std::string line = std::to_string(__LINE__ + 2);
    for (int i = 0; i < 3; ++i) {
        PLATFORM_DATA_ERROR(i < 0, "Round %d of %s", i, std::string(5000, 'x').c_str());
    }
    EXPECT_EQ(capture.Failures(), std::vector{"Libs/Tarnel/Platform/tests/Platform_AssertTest:" + line +
                                              ": i < 0: Round 0 of " + std::string(2047 - 11, 'x')});
}

TEST(Assert, RecordsAreOneLineOfTheLog) {
    const AssertCapture capture(99);
    Platform::AssertState& state = *EXP_GetAssertState();
    const struct {
        AssertKind kind;
        bool asks;
        const char* records; // without their times
    } rows[] = {
        {AssertKind::Assert, false, " ASSERT File=unit Line=7 Expression=a > b Message=too?small\n"},
        {AssertKind::DataError, false, " DATA ERROR File=unit Line=7 Expression=a > b Message=too?small\n"},
        {AssertKind::Assert, true,
         " ASSERT File=unit Line=7 Expression=a > b Message=Unknown return from DisplayAssertDialog 99\n"},
    };
    for (const auto& row : rows) {
        state.showDialogs = row.asks;
        state.writeToLog = !row.asks;
        testing::internal::CaptureStderr();
        bool ignoreAlways = false;
        EXPECT_FALSE(Fail(ignoreAlways, row.kind));
        std::string record = testing::internal::GetCapturedStderr();
        std::erase(record, '\r');
        EXPECT_EQ(record.substr(record.find('\t') + 1), row.records);
    }
}

TEST(Assert, AHandlerMayFailAChecksOrThrow) {
    const AssertCapture capture;
    EXP_GetAssertState()->handlers[0] = [](const char*, int, const char*, const char*) -> int {
        bool inside = true;
        EXPECT_FALSE(Fail(inside));
        EXPECT_FALSE(inside) << "ignored once";
        throw std::runtime_error("out of the handler");
    };
    bool ignoreAlways = false;
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW(static_cast<void>(Fail(ignoreAlways)), std::runtime_error);
        EXPECT_EQ(EXP_GetAssertState()->asking, 0u);
    }
}

} // namespace
