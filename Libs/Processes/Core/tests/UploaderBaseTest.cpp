#include "Libs/Processes/Core/src/UploaderBase.h"

#include "Libs/Processes/Core/tests/UploaderFixture.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

using namespace UploaderTest;

namespace {

using Uploader = UploaderFixture;

} // namespace

TEST_F(Uploader, RunsFourAtOnceTheLatestFirst) {
    Run(false);
    const Names f = Offer({"1", "2", "3", "4", "5", "6"});
    Start();
    ASSERT_TRUE(AwaitStarts(4));
    ASSERT_TRUE(AwaitPasses());
    EXPECT_EQ((Names{f[5], f[4], f[3], f[2]}), m_board.started);
    LetFinish(f[3]);
    ASSERT_TRUE(AwaitStarts(5));
    ASSERT_TRUE(AwaitPasses());
    EXPECT_EQ(5u, m_board.started.size());
    LetAllFinish();
    ASSERT_TRUE(AwaitDestroyed(6));
    EXPECT_EQ((Names{f[5], f[4], f[3], f[2], f[1], f[0]}), m_board.started);
    EXPECT_TRUE(
        m_log.Contains(Platform::InfoLog, " Starting upload thread for submission in folder " + f[0]));
    EXPECT_EQ(0u, m_board.asked);
    for (const std::string name : {"1", "2", "3", "4", "5", "6"}) {
        EXPECT_FALSE(m_scratch.Exists(name));
    }
}

TEST_F(Uploader, AsksOnceARunOnItsOwnThread) {
    Run(true);
    LetAllFinish();
    Start();
    ASSERT_TRUE(AwaitPasses());
    EXPECT_EQ(0u, m_board.asked); // nothing to send yet
    Offer({"1", "2"});
    ASSERT_TRUE(AwaitDestroyed(2));
    Offer({"3"});
    ASSERT_TRUE(AwaitDestroyed(3));
    EXPECT_EQ(1u, m_board.asked);
    EXPECT_EQ(m_uploader->GetThread()->GetThreadId(), m_board.askedOn);
    EXPECT_EQ(3u, m_board.sent);
}

TEST_F(Uploader, ARefusalHoldsForTheWholeRun) {
    Run(true, UploadPermission::Refused);
    Start();
    Offer({"1", "2"});
    ASSERT_TRUE(AwaitDestroyed(2));
    Offer({"3"});
    ASSERT_TRUE(AwaitDestroyed(3));
    EXPECT_EQ(1u, m_board.asked);
    EXPECT_EQ(0u, m_board.sent);
    for (const std::string name : {"1", "2", "3"}) {
        EXPECT_FALSE(m_scratch.Exists(name));
    }
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(Uploader, AQuestionThatFailsRefuses) {
    Run(true, UploadPermission::Allowed, "No window");
    Start();
    Offer({"1"});
    ASSERT_TRUE(AwaitDestroyed(1));
    EXPECT_EQ(0u, m_board.sent);
    EXPECT_FALSE(m_scratch.Exists("1"));
    EXPECT_EQ(Names{" Failed to get user's permission to upload crash report. Error=No window"},
              m_log.Errors());
}

TEST_F(Uploader, ShutdownWaitsForTheUploadsInFlight) {
    Run(false);
    const Names folders = Offer({"1", "2"});
    Start();
    ASSERT_TRUE(AwaitStarts(2));
    m_uploader->RequestShutdown();
    ASSERT_TRUE(m_board.Await([](const Board& board) { return board.letGo == 1; }));
    EXPECT_TRUE(m_log.Contains(Platform::InfoLog, " Waiting for 2 active uploads to complete"));
    EXPECT_EQ(Thread::Status::Running, m_uploader->GetThread()->GetStatus());
    LetAllFinish();
    Stop();
    EXPECT_EQ(2u, m_board.destroyed);
    EXPECT_FALSE(m_scratch.Exists("1"));
    EXPECT_FALSE(m_scratch.Exists("2"));
}

TEST_F(Uploader, ShutdownLeavesThePendingFolders) {
    Run(false);
    Offer({"1", "2", "3", "4", "5"});
    Start();
    ASSERT_TRUE(AwaitStarts(4));
    m_uploader->RequestShutdown();
    LetAllFinish();
    Stop();
    EXPECT_EQ(4u, m_board.started.size());
    EXPECT_TRUE(m_scratch.Exists("1/submission.pkg"));
}

TEST_F(Uploader, OneThatCouldNotBeStartedFreesItsPlace) {
    Run(false);
    m_uploader->m_startsThreads = false;
    Offer({"1", "2", "3", "4", "5"});
    Start();
    ASSERT_TRUE(AwaitStarts(5));
    ASSERT_TRUE(AwaitDestroyed(5));
    EXPECT_TRUE(m_scratch.Exists("1/submission.pkg"));
}

TEST_F(Uploader, MisuseIsReportedAndSurvived) {
    EXP_GetAssertState()->showDialogs = 0;
    const Platform::BugState& bugs = *EXP_GetBugState();
    Run(false);
    m_uploader->AddActiveUpload(nullptr); // not the uploader's thread
    EXPECT_STREQ("GetThread()->GetThreadId() == GetCurrentThreadIdImpl()", bugs.lastExpression);
    EXPECT_STREQ("Libs/Processes/Core/src/UploaderBase", bugs.lastSourceUnit);
    const uint32_t before = bugs.failedCount[0];
    HoldingUploader alone(m_application.get(), m_board, nullptr);
    alone.ThreadMain(); // no watcher: it ends at once
    EXPECT_STREQ("pWatcher", bugs.lastExpression);
    EXPECT_EQ(before + 2, bugs.failedCount[0]); // "m_watcherProcPtr" first
    Start();
}
