#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"

#include <mutex>

#include <gtest/gtest.h>

#include "tests/support/OnThreads.h"

TEST(SpinLock, ExcludesOtherThreads) {
    Platform::SpinLock lock;
    int rounds = 0; // not atomic: lost updates would show
    TestSupport::OnThreads(4, [&](int) {
        for (int i = 0; i < 5000; ++i) {
            const std::lock_guard guard(lock);
            ++rounds;
        }
    });
    EXPECT_EQ(rounds, 20000);
}
