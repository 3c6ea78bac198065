#include "Libs/Framework/Core/src/PlatformHelpers_Retry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using PlatformHelpers::RetryOutcome;

namespace {

constexpr uint32_t AccessDenied = 5;
constexpr uint32_t SharingViolation = 32;

// An operating-system call that answers with these errors in turn, the last one for ever.
struct Script {
    std::vector<uint32_t> errors;
    uint32_t attempts = 0;
    std::vector<uint32_t> pauses = {};

    PlatformHelpers::RetryResult Run() {
        return PlatformHelpers::RetryWhileDenied(
            [this] { return errors[std::min<std::size_t>(attempts++, errors.size() - 1)]; },
            [this](uint32_t milliseconds) { pauses.push_back(milliseconds); });
    }
};

TEST(Retry, DeniedForEverTakesTenAttempts) {
    for (const uint32_t error : {AccessDenied, SharingViolation}) {
        Script script{{error}};
        const auto result = script.Run();
        EXPECT_EQ(result.outcome, RetryOutcome::StillDenied);
        EXPECT_EQ(result.error, error);
        EXPECT_EQ(script.attempts, 10u);
        EXPECT_EQ(script.pauses, (std::vector<uint32_t>{2, 4, 8, 16, 32, 64, 128, 256, 512}));
    }
}

TEST(Retry, EndsWithTheFirstAttemptThatIsNotDenied) {
    Script success{{AccessDenied, SharingViolation, 0}};
    EXPECT_EQ(success.Run().outcome, RetryOutcome::Done);
    EXPECT_EQ(success.pauses, (std::vector<uint32_t>{2, 4}));

    Script missing{{AccessDenied, 2}};
    const auto result = missing.Run();
    EXPECT_EQ(result.outcome, RetryOutcome::Failed);
    EXPECT_EQ(result.error, 2u);
    EXPECT_EQ(missing.attempts, 2u);
}

} // namespace
