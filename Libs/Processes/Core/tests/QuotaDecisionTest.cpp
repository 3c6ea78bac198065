#include "Libs/Processes/Core/src/QuotaDecision.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr uint64_t Second = 10'000'000; // in file time
constexpr uint64_t Max = UINT64_MAX;

using QuotaDecision::FolderRecord;

std::vector<FolderRecord> OfSizes(const std::vector<uint64_t>& sizes) {
    std::vector<FolderRecord> records;
    for (const uint64_t size : sizes) {
        records.push_back({.age = records.size(), .path = "", .size = size, .valid = true});
    }
    return records;
}

TEST(QuotaDecision, TheYoungestThatFitTogetherStay) {
    const struct {
        const char* what;
        std::vector<uint64_t> sizes; // youngest first
        uint64_t quota;
        std::size_t fit;
    } rows[] = {
        {"exactly the quota", {2, 3, 5}, 10, 3},
        {"one byte more", {2, 3, 6}, 10, 2},
        {"one byte more in the middle takes the older ones along", {2, 9, 1, 0}, 10, 1},
        {"empty folders behind a full quota fit", {10, 0, 0}, 10, 3},
        {"no quota at all", {0, 0, 1, 0}, 0, 2},
        {"a total that would wrap to a small one", {1, Max, 1}, 10, 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(QuotaDecision::CountThatFit(OfSizes(row.sizes), row.quota), row.fit) << row.what;
    }
}

TEST(QuotaDecision, AgeIsWholeSecondsAndWrapsInTheFuture) {
    EXPECT_EQ(QuotaDecision::AgeInSeconds(101 * Second - 1, 100 * Second), 0u);
    EXPECT_EQ(QuotaDecision::AgeInSeconds(101 * Second, 100 * Second), 1u);
    EXPECT_EQ(QuotaDecision::AgeInSeconds(100 * Second, 100 * Second + 1), Max / Second);
}

TEST(QuotaDecision, OnlyInvalidFoldersAgeOut) {
    const auto isAgedOut = [](uint64_t age, bool valid) {
        return QuotaDecision::IsAgedOut({.age = age, .path = "", .size = 0, .valid = valid}, 3600);
    };
    EXPECT_FALSE(isAgedOut(3600, false));
    EXPECT_TRUE(isAgedOut(3601, false));
    EXPECT_FALSE(isAgedOut(3601, true));
}

} // namespace
