#include "Libs/Tarnel/String/src/String_PaletteAllocator.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

TEST(PaletteAllocator, HandsOutSeparateAlignedBlocks) {
    String::PaletteAllocator allocator;
    std::vector<std::pair<unsigned char*, std::size_t>> blocks;
    const std::size_t sizes[] = {8, 24, 16'344, 8, 65'536, 8, 16, 16'384};
    for (const std::size_t size : sizes) {
        const std::size_t alignment = size % 16 == 0 ? 16 : 8;
        auto* const block = static_cast<unsigned char*>(allocator.Allocate(size, alignment));
        ASSERT_NE(nullptr, block);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(block) % alignment);
        std::memset(block, static_cast<int>(blocks.size()), size);
        blocks.emplace_back(block, size);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_EQ(i, blocks[i].first[0]);
        EXPECT_EQ(i, blocks[i].first[blocks[i].second - 1]);
    }
}

TEST(PaletteAllocator, ReportsBrokenRules) {
    const struct {
        std::size_t bytes;
        std::size_t alignment;
        const char* expression;
    } rows[] = {{8, 0, "uiAlign && !(uiAlign & (uiAlign - 1))|"},
                {24, 12, "uiAlign && !(uiAlign & (uiAlign - 1))|"},
                {12, 8, "(uiBytes % uiAlignment) == 0|"}};
    for (const auto& row : rows) {
        const AssertCapture capture;
        String::PaletteAllocator allocator;
        EXPECT_EQ(nullptr, allocator.Allocate(row.bytes, row.alignment));
        EXPECT_EQ(std::vector<std::string>{row.expression}, capture.Texts());
    }
}
