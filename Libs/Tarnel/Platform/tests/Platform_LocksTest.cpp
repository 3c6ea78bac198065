#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"

#include <mutex>
#include <shared_mutex>

#include <gtest/gtest.h>

#include "tests/support/OnThreads.h"

TEST(Locks, ExcludeOtherThreads) {
    Platform::ReaderWriterLock lock;
    Platform::SpinLock spinLock;
    int first = 0; // not atomic: lost updates would show
    int second = 0;
    int rounds = 0;
    std::atomic<int> torn = 0;
    TestSupport::OnThreads(4, [&](int) {
        for (int i = 0; i < 5000; ++i) {
            if (i % 4 == 0) {
                const std::unique_lock writer(lock);
                ++first;
                ++second;
            } else {
                const std::shared_lock reader(lock);
                torn += first != second;
            }
            const std::lock_guard guard(spinLock);
            ++rounds;
        }
    });
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(second, 5000);
    EXPECT_EQ(rounds, 20000);
}
