#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"

#include <mutex>
#include <shared_mutex>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"
#include "tests/support/OnThreads.h"

using TestSupport::OnThreads;

TEST(SpinLock, ExcludesOtherThreads) {
    Platform::SpinLock lock;
    int counter = 0; // not atomic: lost updates would show
    OnThreads(4, [&](int) {
        for (int i = 0; i < 20000; ++i) {
            const std::lock_guard guard(lock);
            ++counter;
        }
    });
    EXPECT_EQ(80000, counter);
}

TEST(ReaderWriterLock, ReadersNeverSeeHalfAWrite) {
    Platform::ReaderWriterLock lock;
    int first = 0;
    int second = 0;
    std::atomic<int> torn = 0;
    OnThreads(4, [&](int) {
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
    EXPECT_EQ(0, torn);
    EXPECT_EQ(5000, second);
}

TEST(ReaderWriterLock, ReadersShareIt) {
    Platform::ReaderWriterLock lock;
    std::atomic<int> inside = 0;
    OnThreads(2, [&](int) {
        const std::shared_lock reader(lock);
        for (++inside; inside < 2;) { // both must be in at once to get out
            std::this_thread::yield();
        }
    });
    EXPECT_EQ(2, inside);
}

TEST(ReaderWriterLock, ReleaseWithoutAHolderIsReported) {
    const AssertCapture capture;
    Platform::ReaderWriterLock lock;
    lock.unlock_shared();
    EXPECT_EQ(std::vector<std::string>{"_InterlockedDecrement((volatile long*)(&m_iLock)) >= 0|"},
              capture.Texts());
}
