#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"

#include <cstdint>
#include <cstring>
#include <list>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_StaticHeapAllocator.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_TempHeap.h"
#include "tests/support/AssertCapture.h"

TEST(Memory, BlocksAreAlignedAndWhole) {
    for (const std::size_t alignment : {0u, 1u, 8u, 16u, 64u, 4096u}) {
        for (const std::size_t size : {0u, 1u, 15u, 16u, 17u, 100000u}) {
            void* const block = Platform::GeneralAllocate(size, alignment);
            ASSERT_NE(nullptr, block);
            EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(block) % (alignment < 16 ? 16 : alignment));
            std::memset(block, 0xAB, size);
            Platform::GeneralFree(block);
        }
    }
    Platform::GeneralFree(nullptr);
}

TEST(Memory, WhatCannotBeServedIsReported) {
    const struct {
        std::size_t size;
        std::size_t alignment;
    } rows[] = {{SIZE_MAX, 16}, {SIZE_MAX - 14, 16}, {16, 24}};
    for (const auto& row : rows) {
        const AssertCapture capture;
        EXPECT_EQ(nullptr, Platform::GeneralAllocate(row.size, row.alignment));
        EXPECT_EQ(std::vector<std::string>{"pBlock|"}, capture.Texts());
    }
}

TEST(Memory, ShortLivedBlocksComeFromTheTempHeapWhileItHasRoom) {
    Platform::TempHeap& heap = *EXP_GetTempHeap();
    void* const before = Platform::ShortLivedAllocate(32);
    ASSERT_TRUE(heap.SetUp(64));
    void* const inside = Platform::ShortLivedAllocate(48);
    void* const tooLarge = Platform::ShortLivedAllocate(32);
    EXPECT_FALSE(heap.Owns(before));
    EXPECT_TRUE(heap.Owns(inside));
    EXPECT_FALSE(heap.Owns(tooLarge));
    EXPECT_EQ(1, heap.LiveBlocks());
    for (void* const block : {before, inside, tooLarge}) {
        std::memset(block, 1, 32);
        Platform::ShortLivedFree(block);
    }
    EXPECT_EQ(0, heap.LiveBlocks());
    EXPECT_TRUE(heap.ShutDown());
}

TEST(StaticHeapAllocator, ServesContainersAndReportsOtherSizes) {
    const AssertCapture capture;
    std::list<int, Platform::StaticHeapAllocator<int>> numbers = {1, 2, 3};
    numbers.pop_front();
    EXPECT_EQ(5, numbers.front() + numbers.back());
    EXPECT_TRUE(capture.Failures().empty());
    Platform::StaticHeapAllocator<int, 4> fours;
    int* const block = fours.allocate(5);
    block[4] = 5;
    fours.deallocate(block, 5);
    EXPECT_EQ(std::vector<std::string>{"n == TAllocSize|"}, capture.Texts());
}
