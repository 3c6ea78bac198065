#include "Libs/Framework/Core/src/Thread.h"

#include <windows.h>

#include <stdexcept>

#include <gtest/gtest.h>

namespace {

TEST(Thread, StatusTellsHowItEnded) {
    const struct {
        std::function<void()> function;
        Thread::Status status;
    } rows[] = {
        {[] {}, Thread::Status::EndedNormally},
        {[] { throw std::runtime_error("no luck"); }, Thread::Status::Ended},
        {[] { throw 1; }, Thread::Status::Ended},
        {[] { ExitThread(101); }, Thread::Status::Ended},
        {[] { ExitThread(0xC0000005); }, Thread::Status::Failed},
    };
    for (const auto& row : rows) {
        const auto thread = std::make_shared<Thread>(row.function);
        EXPECT_TRUE(thread->Resume());
        thread->Join();
        EXPECT_EQ(thread->GetStatus(), row.status) << &row - rows;
    }
}

} // namespace
