#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"

#include <mutex>
#include <shared_mutex>

#include <gtest/gtest.h>

#include "tests/support/OnThreads.h"

TEST(SpinLock, ExcludesOtherThreads) {
    Platform::SpinLock lock;
    int counter = 0; // not atomic: lost updates would show
    TestSupport::OnThreads(4, [&](int) {
        for (int i = 0; i < 20000; ++i) {
            const std::lock_guard guard(lock);
            ++counter;
        }
    });
    EXPECT_EQ(counter, 80000);
}

TEST(ReaderWriterLock, ReadersNeverSeeHalfAWrite) {
    Platform::ReaderWriterLock lock;
    int first = 0;
    int second = 0;
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
        }
    });
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(second, 5000);
}
