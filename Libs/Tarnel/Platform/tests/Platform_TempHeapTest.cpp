#include "Libs/Tarnel/Platform/src/Common/Platform_TempHeap.h"

#include <atomic>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"
#include "tests/support/OnThreads.h"

using Platform::TempHeap;

TEST(TempHeap, WithoutAnArenaEveryRequestIsTurnedDown) {
    TempHeap heap;
    EXPECT_EQ(nullptr, heap.Allocate(1));
    EXPECT_EQ(nullptr, heap.Allocate(0));
    EXPECT_EQ(0, heap.LiveBlocks());
    EXPECT_FALSE(heap.Owns(&heap));
    EXPECT_FALSE(heap.Owns(nullptr));
    heap.Free(nullptr);
}

TEST(TempHeap, BumpsInGranulesAndStartsAgainWhenNothingIsLive) {
    TempHeap heap;
    ASSERT_TRUE(heap.SetUp(100)); // 96 bytes are whole granules
    auto* const first = static_cast<char*>(heap.Allocate(1));
    auto* const second = static_cast<char*>(heap.Allocate(17));
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first + 16, second);
    EXPECT_EQ(48u, heap.UsedBytes());
    heap.Free(first);
    EXPECT_EQ(48u, heap.UsedBytes());
    heap.Free(second);
    EXPECT_EQ(0u, heap.UsedBytes());
    EXPECT_EQ(first, heap.Allocate(96));
    heap.Free(first);
    EXPECT_TRUE(heap.ShutDown());
}

TEST(TempHeap, RequestThatDoesNotFitChangesNothing) {
    TempHeap heap;
    ASSERT_TRUE(heap.SetUp(64));
    void* const block = heap.Allocate(48);
    for (const std::size_t size : {std::size_t{17}, std::size_t{65}, SIZE_MAX - 3, SIZE_MAX}) {
        EXPECT_EQ(nullptr, heap.Allocate(size)) << size;
    }
    EXPECT_EQ(1, heap.LiveBlocks());
    EXPECT_EQ(48u, heap.UsedBytes());
    heap.Free(block);
    EXPECT_TRUE(heap.ShutDown());
}

TEST(TempHeap, BlockOfSizeZeroKeepsTheArenaFromBeingReset) {
    TempHeap heap;
    ASSERT_TRUE(heap.SetUp(64));
    void* const empty = heap.Allocate(0);
    void* const block = heap.Allocate(16);
    EXPECT_EQ(empty, block); // nothing was reserved for it
    heap.Free(block);
    EXPECT_EQ(16u, heap.UsedBytes());
    EXPECT_FALSE(heap.ShutDown());
    heap.Free(empty);
    EXPECT_EQ(0u, heap.UsedBytes());
    EXPECT_TRUE(heap.ShutDown());
}

TEST(TempHeap, MisuseIsReportedAndTheHeapGoesOn) {
    const std::string notOurs =
        "OwnsAllocation(pBytes)|Attempting to deallocate mem in the temp heap that did not come from it";
    const AssertCapture capture;
    {
        TempHeap heap;
        ASSERT_TRUE(heap.SetUp(64));
        EXPECT_FALSE(heap.SetUp(64));
        int foreign = 0;
        heap.Free(&foreign);
        void* const block = heap.Allocate(16);
        heap.Free(static_cast<char*>(block) + 64); // right behind the arena
        heap.Free(block);
        heap.Free(block);
        void* const next = heap.Allocate(16);
        EXPECT_EQ(block, next);
        heap.Free(next);
    }
    const std::vector<std::string> expected = {notOurs, notOurs, "iResult >= 0|",
                                               "!m_uiCapacity|temp heap not shutdown"};
    EXPECT_EQ(expected, capture.Texts());
}

// A small arena, so that requests fail, blocks overlap in time and resets happen all the while. Each thread
// marks its block and finds the mark intact.
TEST(TempHeap, ThreadsNeverShareABlock) {
    TempHeap heap;
    ASSERT_TRUE(heap.SetUp(1024));
    std::atomic<int> damaged = 0;
    std::atomic<int> served = 0;
    TestSupport::OnThreads(4, [&heap, &damaged, &served](int t) {
        for (int i = 0; i < 20000; ++i) {
            const auto size = static_cast<std::size_t>(1 + (i * 37 + t * 11) % 300);
            auto* const block = static_cast<unsigned char*>(heap.Allocate(size));
            if (!block) {
                continue;
            }
            ++served;
            std::memset(block, t, size);
            for (std::size_t b = 0; b < size; ++b) {
                damaged += block[b] != t;
            }
            heap.Free(block);
        }
    });
    EXPECT_EQ(0, damaged);
    EXPECT_GT(served, 0);
    EXPECT_EQ(0, heap.LiveBlocks());
    EXPECT_EQ(0u, heap.UsedBytes());
    EXPECT_TRUE(heap.ShutDown());
}
