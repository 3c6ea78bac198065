#include "Libs/Processes/Core/src/UploadDecisions.h"

#include <gtest/gtest.h>

using enum UploadPermission;

TEST(UploadDecisions, AsksBeforeTheFirstBatchAlone) {
    static constexpr struct {
        bool askPermission, nothingPending, foundNew;
        UploadPermission state;
        bool asks;
    } rows[] = {
        {true, true, true, NotAsked, true},   {false, true, true, NotAsked, false},
        {true, false, true, NotAsked, false}, {true, true, false, NotAsked, false},
        {true, true, true, Allowed, false},   {true, true, true, Refused, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(row.asks, UploadDecisions::ShouldAskPermission(row.askPermission, row.nothingPending,
                                                                 row.foundNew, row.state));
    }
}

TEST(UploadDecisions, OnlyAClearYesAllows) {
    const ResultCode failure = "No window";
    const struct {
        ResultCode asked;
        UploadPermission answer, state;
    } rows[] = {
        {Platform::Success, Allowed, Allowed},
        {Platform::Success, Refused, Refused},
        {Platform::Success, NotAsked, Refused},
        {Platform::Success, UploadPermission{1}, Refused},
        {failure, Allowed, Refused},
        {failure, Refused, Refused},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(row.state, UploadDecisions::PermissionAfterAsking(row.asked, row.answer));
    }
}

TEST(UploadDecisions, StartsWhileThereIsRoomAndNobodyStops) {
    EXPECT_TRUE(UploadDecisions::MayStartUpload(false, 1, 3, 4));
    EXPECT_FALSE(UploadDecisions::MayStartUpload(false, 1, 4, 4));
    EXPECT_FALSE(UploadDecisions::MayStartUpload(false, 0, 0, 4));
    EXPECT_FALSE(UploadDecisions::MayStartUpload(true, 1, 0, 4));
}

TEST(UploadDecisions, ACycleEndsWhenIdleStoppedOrOver) {
    EXPECT_TRUE(UploadDecisions::CycleGoesOn(false, 1, 0, 29, 30));
    EXPECT_TRUE(UploadDecisions::CycleGoesOn(false, 0, 1, 29, 30));
    EXPECT_FALSE(UploadDecisions::CycleGoesOn(false, 0, 0, 29, 30));
    EXPECT_FALSE(UploadDecisions::CycleGoesOn(false, 1, 1, 30, 30));
    EXPECT_FALSE(UploadDecisions::CycleGoesOn(true, 1, 1, 29, 30));
}
