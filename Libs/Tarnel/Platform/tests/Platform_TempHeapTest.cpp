#include "Libs/Tarnel/Platform/src/Common/Platform_TempHeap.h"

#include <atomic>
#include <cstring>

#include <gtest/gtest.h>

#include "tests/support/OnThreads.h"

using Platform::TempHeap;

TEST(TempHeap, BumpsInGranulesAndStartsAgainWhenEmpty) {
    TempHeap heap;
    EXPECT_EQ(heap.Allocate(1), nullptr) << "no arena yet";
    ASSERT_TRUE(heap.SetUp(100)); // 96 bytes are whole granules
    auto* const first = static_cast<char*>(heap.Allocate(1));
    EXPECT_EQ(heap.Allocate(17), first + 16);
    for (const std::size_t size : {std::size_t{49}, SIZE_MAX - 3}) {
        EXPECT_EQ(heap.Allocate(size), nullptr) << size;
    }
    EXPECT_FALSE(heap.ShutDown());
    heap.Free(first);
    heap.Free(first + 16);
    EXPECT_EQ(heap.Allocate(96), first);
    heap.Free(first);
    EXPECT_TRUE(heap.ShutDown());
}

// A small arena, so that requests fail, blocks overlap in time and resets happen again and again.
TEST(TempHeap, ThreadsNeverShareABlock) {
    TempHeap heap;
    ASSERT_TRUE(heap.SetUp(1024));
    std::atomic<int> damaged = 0;
    TestSupport::OnThreads(4, [&heap, &damaged](int t) {
        for (int i = 0; i < 5000; ++i) {
            const auto size = static_cast<std::size_t>(1 + (i * 37 + t * 11) % 300);
            if (auto* const block = static_cast<unsigned char*>(heap.Allocate(size))) {
                std::memset(block, t, size);
                for (std::size_t b = 0; b < size; ++b) {
                    damaged += block[b] != t;
                }
                heap.Free(block);
            }
        }
    });
    EXPECT_EQ(damaged, 0);
    EXPECT_EQ(heap.UsedBytes(), 0u);
    EXPECT_TRUE(heap.ShutDown());
}
