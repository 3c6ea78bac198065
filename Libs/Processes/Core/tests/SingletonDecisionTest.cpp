#include "Libs/Processes/Core/src/SingletonDecision.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(SingletonDecision, OneCopyStaysAndTheOthersGo) {
    using enum SingletonDecision::State;
    using enum SingletonDecision::Verdict;
    const struct {
        const char* what;
        std::vector<SingletonDecision::Copy> copies;
        SingletonDecision::Verdict verdict; // on the process with the id 8
    } rows[] = {
        {"same moment, lower id", {{12, 100}, {8, 100}}, Stay},
        {"same moment, higher id", {{4, 100}, {8, 100}}, Go},
        {"the middle of three", {{4, 99}, {8, 100}, {12, 101}}, Go},
        {"one other, itself unmatched", {{4, 99}}, Stay},
        {"two others, itself unmatched", {{4, 199}, {12, 101}}, Go},
        {"the clock was set back since the other started", {{4, 200, Staying}, {8, 100}}, Go},
        {"one ends, one stays", {{4, 99, Ending}, {8, 100}, {12, 101, Staying}}, Go},
        {"one ends, an older one waits too", {{4, 98, Ending}, {5, 99}, {8, 100}}, Go},
        {"one ends, a younger one waits too", {{4, 99, Ending}, {8, 100}, {12, 101}}, Wait},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(SingletonDecision::Decide(row.copies, 8), row.verdict) << row.what;
    }
}

} // namespace
