#include "Libs/Framework/Core/src/Thread.h"

#include <windows.h>

#include <atomic>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"

namespace {

std::shared_ptr<Thread> Make(std::function<void()> function) {
    return std::make_shared<Thread>(std::move(function));
}

Thread::Status StatusAfterRunning(std::function<void()> function) {
    const auto thread = Make(std::move(function));
    EXPECT_TRUE(thread->Resume());
    thread->Join();
    return thread->GetStatus();
}

TEST(Thread, StatusOfExitCodes) {
    using Status = Thread::Status;
    const struct {
        uint32_t exitCode;
        Status status;
    } rows[] = {
        {0, Status::Ended},           {1, Status::Ended},           {99, Status::Ended},
        {100, Status::EndedNormally}, {101, Status::Ended},         {258, Status::Ended},
        {259, Status::Running},       {260, Status::Ended},         {0x80000000, Status::Ended},
        {0x80000001, Status::Failed}, {0x80000004, Status::Failed}, {0x80000005, Status::Ended},
        {0xC0000004, Status::Ended},  {0xC0000005, Status::Failed}, {0xC0000006, Status::Failed},
        {0xC0000007, Status::Ended},  {0xC0000008, Status::Failed}, {0xC0000009, Status::Ended},
        {0xC000001C, Status::Ended},  {0xC000001D, Status::Failed}, {0xC000001E, Status::Ended},
        {0xC0000024, Status::Ended},  {0xC0000025, Status::Failed}, {0xC0000026, Status::Failed},
        {0xC0000027, Status::Ended},  {0xC000008B, Status::Ended},  {0xC000008C, Status::Failed},
        {0xC0000096, Status::Failed}, {0xC0000097, Status::Ended},  {0xC00000FC, Status::Ended},
        {0xC00000FD, Status::Failed}, {0xC00000FE, Status::Ended},  {0xC0000139, Status::Ended},
        {0xC000013A, Status::Failed}, {0xC000013B, Status::Ended},  {0xFFFFFFFF, Status::Ended},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Thread::StatusOfExitCode(row.exitCode), row.status) << std::hex << row.exitCode;
    }
}

TEST(Thread, TellsHowItsThreadEnded) {
    EXPECT_EQ(StatusAfterRunning([] {}), Thread::Status::EndedNormally);
    EXPECT_EQ(StatusAfterRunning([] { ExitThread(0); }), Thread::Status::Ended);
    EXPECT_EQ(StatusAfterRunning([] { ExitThread(0xC0000005); }), Thread::Status::Failed);
}

TEST(Thread, ExceptionIsLoggedAndEndsTheThreadAlone) {
    const TestSupport::LogCapture log;
    EXPECT_EQ(StatusAfterRunning([] { throw std::runtime_error("no luck"); }), Thread::Status::Ended);
    EXPECT_EQ(StatusAfterRunning([] { throw 1; }), Thread::Status::Ended);
    StatusAfterRunning({}); // an empty function
    const auto errors = log.Errors();
    ASSERT_EQ(errors.size(), 3u);
    EXPECT_EQ(errors[0], " Thread ended by an exception: no luck");
    EXPECT_EQ(errors[1], " Thread ended by an exception: of unknown type");
    EXPECT_EQ(errors[2], std::string(" Thread ended by an exception: ") + std::bad_function_call().what());
}

TEST(Thread, WaitsForItsResume) {
    std::atomic<uint32_t> idInside = 0;
    const auto thread = Make([&] { idInside = GetCurrentThreadId(); });
    EXPECT_EQ(thread->GetStatus(), Thread::Status::Running);
    EXPECT_TRUE(thread->SetName("Jörg"));
    EXPECT_EQ(WaitForSingleObject(thread->GetHandle(), 20), static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_EQ(idInside, 0u);
    EXPECT_TRUE(thread->Resume());
    thread->Join();
    EXPECT_EQ(idInside, thread->GetThreadId());
}

// Destroys a thread in the state that prepare brings it to; whether its function ran.
bool RanAfterDestruction(const std::function<void(Thread&)>& prepare) {
    std::atomic<bool> ran = false;
    HANDLE handle = nullptr;
    {
        const auto thread = Make([&] { ran = true; });
        prepare(*thread);
        DuplicateHandle(GetCurrentProcess(), thread->GetHandle(), GetCurrentProcess(), &handle, SYNCHRONIZE,
                        FALSE, 0);
    }
    EXPECT_EQ(WaitForSingleObject(handle, 10000), static_cast<DWORD>(WAIT_OBJECT_0));
    CloseHandle(handle);
    return ran;
}

TEST(Thread, NeverResumedEndsWithoutItsFunction) {
    EXPECT_FALSE(RanAfterDestruction([](Thread&) {}));
    EXPECT_FALSE(RanAfterDestruction([](Thread& thread) { EXPECT_TRUE(thread.Suspend()); }));
    EXPECT_FALSE(RanAfterDestruction([](Thread& thread) { thread.Finish(); }));
}

TEST(Thread, FunctionOutlivesTheDestroyedThread) {
    HANDLE go = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::string seen;
    auto thread = Make([go, done, &seen, text = std::string(100, 'x')] {
        WaitForSingleObject(go, INFINITE);
        seen = text;
        SetEvent(done);
    });
    EXPECT_TRUE(thread->Resume());
    thread.reset();
    SetEvent(go);
    EXPECT_EQ(WaitForSingleObject(done, 10000), static_cast<DWORD>(WAIT_OBJECT_0));
    EXPECT_EQ(seen, std::string(100, 'x'));
    CloseHandle(go);
    CloseHandle(done);
}

TEST(Thread, FinishResumesASuspendedThread) {
    std::atomic<bool> stop = false;
    const auto thread = Make([&] {
        while (!stop) {
            Sleep(1);
        }
    });
    EXPECT_TRUE(thread->Resume());
    EXPECT_TRUE(thread->Suspend());
    EXPECT_TRUE(thread->Suspend());
    stop = true;
    thread->Finish();
    EXPECT_EQ(thread->GetStatus(), Thread::Status::EndedNormally);
}

TEST(Thread, BackgroundReceiptKeepsTheThreadObject) {
    auto thread = Make([] {});
    const std::weak_ptr<Thread> watched = thread;
    auto receipt = thread->EnterBackgroundMode();
    EXPECT_TRUE(thread->Resume());
    thread->Join();
    thread.reset();
    EXPECT_FALSE(watched.expired());
    receipt.reset();
    EXPECT_TRUE(watched.expired());
}

} // namespace
