#include "Libs/Framework/Core/src/Thread.h"

#include <windows.h>

#include <atomic>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"

namespace {

Thread::Status StatusAfterRunning(std::function<void()> function) {
    const auto thread = std::make_shared<Thread>(std::move(function));
    EXPECT_TRUE(thread->Resume());
    thread->Join();
    return thread->GetStatus();
}

TEST(Thread, StatusTellsHowItEnded) {
    EXPECT_EQ(StatusAfterRunning([] {}), Thread::Status::EndedNormally);
    for (const uint32_t code : {0u, 1u, 101u, 0x80000005u, 0xC0000007u, 0xC000008Bu, 0xC0000097u}) {
        EXPECT_EQ(StatusAfterRunning([code] { ExitThread(code); }), Thread::Status::Ended) << code;
    }
    for (const uint32_t code : {0x80000001u, 0xC0000005u, 0xC0000096u, 0xC00000FDu, 0xC000013Au}) {
        EXPECT_EQ(StatusAfterRunning([code] { ExitThread(code); }), Thread::Status::Failed) << code;
    }
}

TEST(Thread, ExceptionIsLoggedAndEndsTheThreadAlone) {
    const TestSupport::LogCapture log;
    EXPECT_EQ(StatusAfterRunning([] { throw std::runtime_error("no luck"); }), Thread::Status::Ended);
    EXPECT_EQ(StatusAfterRunning([] { throw 1; }), Thread::Status::Ended);
    EXPECT_EQ(log.Errors(), (std::vector<std::string>{" Thread ended by an exception: no luck",
                                                      " Thread ended by an exception: of unknown type"}));
}

TEST(Thread, NeverResumedEndsWithoutItsFunction) {
    for (const bool isSuspendedAgain : {false, true}) {
        std::atomic<bool> ran = false;
        HANDLE handle = nullptr;
        {
            const auto thread = std::make_shared<Thread>([&] { ran = true; });
            EXPECT_TRUE(thread->SetName("Jörg"));
            EXPECT_EQ(thread->GetStatus(), Thread::Status::Running);
            if (isSuspendedAgain) {
                EXPECT_TRUE(thread->Suspend());
            }
            thread->Finish(); // returns at once
            DuplicateHandle(GetCurrentProcess(), thread->GetHandle(), GetCurrentProcess(), &handle,
                            SYNCHRONIZE, FALSE, 0);
        }
        EXPECT_EQ(WaitForSingleObject(handle, 10000), DWORD{WAIT_OBJECT_0});
        CloseHandle(handle);
        EXPECT_FALSE(ran);
    }
}

TEST(Thread, FinishResumesASuspendedThread) {
    std::atomic<bool> stop = false;
    const auto thread = std::make_shared<Thread>([&] {
        while (!stop) {
            Sleep(1);
        }
    });
    const auto receipt = thread->EnterBackgroundMode();
    EXPECT_TRUE(thread->Resume());
    EXPECT_TRUE(thread->Suspend());
    EXPECT_TRUE(thread->Suspend());
    stop = true;
    thread->Finish();
    EXPECT_EQ(thread->GetStatus(), Thread::Status::EndedNormally);
}

} // namespace
