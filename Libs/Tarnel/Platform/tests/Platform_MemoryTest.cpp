#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

TEST(Memory, BlocksAreAlignedAndFailuresReported) {
    const AssertCapture capture;
    void* const block = Platform::GeneralAllocate(17, 4096);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 4096, 0u);
    Platform::GeneralFree(block);
    EXPECT_TRUE(capture.Texts().empty());
    EXPECT_EQ(Platform::GeneralAllocate(SIZE_MAX - 14), nullptr);
    EXPECT_EQ(Platform::GeneralAllocate(16, 24), nullptr);
    Platform::StaticHeapAllocator<int, 4> fours;
    fours.deallocate(fours.allocate(5), 5);
    EXPECT_EQ(capture.Texts(), (std::vector<std::string>{"pBlock|", "pBlock|", "n == TAllocSize|"}));
}
