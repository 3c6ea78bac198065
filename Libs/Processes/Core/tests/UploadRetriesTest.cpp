#include "Libs/Processes/Core/src/UploadRetries.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::milliseconds;

// The pauses of a package whose attempts get these answers, -1 for none.
std::vector<int64_t> Pauses(uint32_t betweenMs, std::vector<UploadAnswer> answers, uint32_t random = 0) {
    UploadRetries::Package package;
    std::vector<int64_t> pauses;
    for (const UploadAnswer& answer : answers) {
        pauses.push_back(UploadRetries::CountFailure(package, answer, {betweenMs, 10}, random)
                             .value_or(milliseconds(-1))
                             .count());
    }
    return pauses;
}

UploadAnswer Answer(uint32_t status, uint32_t retryAfter = 0) {
    return {"", status, retryAfter};
}

} // namespace

TEST(UploadRetries, EachPauseFollowsFromWhatTheStoreSaid) {
    const std::vector<UploadAnswer> silence(10);
    constexpr uint32_t MostRandom = 7'500; // of a pause of 30 s
    const struct {
        const char* what;
        std::vector<int64_t> pauses;
        std::vector<int64_t> expected;
    } rows[] = {
        {"doubled to an hour, ten attempts",
         Pauses(30'000, silence),
         {30'000, 60'000, 120'000, 240'000, 480'000, 960'000, 1'920'000, 3'600'000, 3'600'000, -1}},
        {"longer than an hour", Pauses(4'000'000'000, {{}, {}}), {4'000'000'000, 4'000'000'000}},
        {"none", Pauses(0, {{}, {}}), {0, 0}},
        {"a quarter at most", Pauses(30'000, {{}}, MostRandom), {37'500}},
        {"and never more", Pauses(30'000, {{}}, MostRandom + 1), {30'000}},
        {"refused", Pauses(1, {Answer(403), Answer(403)}), {1, -1}},
        {"refused in two ways", Pauses(1, {Answer(400), Answer(503), Answer(404)}), {1, 2, -1}},
        {"busy", Pauses(1, {Answer(503), Answer(500), Answer(307)}), {1, 2, 4}},
        {"asked to wait",
         Pauses(1000, {Answer(503, 20), Answer(503, 1), Answer(503, 4'000'000'000)}),
         {20'000, 2'000, 3'600'000}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.pauses, row.expected) << row.what;
    }
}
