#include "Libs/Processes/Core/src/Truncation.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

std::vector<uint8_t> Counting(std::size_t size) {
    std::vector<uint8_t> bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
    }
    return bytes;
}

std::string Text(const std::vector<uint8_t>& bytes, std::size_t begin, std::size_t end) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(begin),
            bytes.begin() + static_cast<std::ptrdiff_t>(end)};
}

std::string Banner(const char* size, const char* limit) {
    return std::string("\n\n<<<<<<<<<<  truncated file size from ") + size + " to " + limit +
           " during bug submission >>>>>>>>>>\n\n";
}

} // namespace

TEST(Truncation, CutIsHalvedInSinglePrecision) {
    const struct {
        uint64_t size, limit;
        TruncationCut cut;
    } rows[] = {
        {1000, 600, {300, 700}},
        {1001, 600, {300, 700}}, // 401 and 1001: both halves lose their fraction
        {1000, 599, {300, 700}}, // 401
        {3, 0, {0, 2}},          // the last byte stays
        {1, 0, {0, 0}},          // half of one is nothing
        {4, 0, {0, 4}},
        {1000, 999, {500, 500}},                  // an excess of one removes nothing
        {16777217, 0, {0, 16777216}},             // 2^24 + 1 is not a float: rounds down to even
        {16777219, 0, {0, 16777219}},             // rounds up to 2^24 + 4: the cut would pass the end
        {16777219, 16777209, {8388605, 8388615}}, // the middle moves, the excess of ten does not
        {5000000001, 1000000000, {500000000, 4500000000}},
        {UINT64_MAX, 0, {0, UINT64_MAX}},
        {UINT64_MAX, 1, {0, UINT64_MAX}},
    };
    for (const auto& row : rows) {
        const TruncationCut cut = ComputeTruncationCut(row.size, row.limit);
        EXPECT_EQ(cut.begin, row.cut.begin) << row.size << " to " << row.limit;
        EXPECT_EQ(cut.end, row.cut.end) << row.size << " to " << row.limit;
    }
}

TEST(Truncation, KeepsBothEndsAroundTheBanner) {
    const struct {
        std::size_t size, limit, begin, end;
    } rows[] = {{1000, 600, 300, 700}, // banner shorter than the cut
                {1000, 950, 475, 525}, // banner longer than the cut
                {1000, 999, 500, 500}, {4, 0, 0, 4}, {3, 0, 0, 2}, {1, 0, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.size) + " to " + std::to_string(row.limit));
        const std::vector<uint8_t> whole = Counting(row.size);
        std::vector<uint8_t> cut = whole;
        TruncateAroundMiddle(cut, row.limit);
        EXPECT_EQ(Text(cut, 0, cut.size()),
                  Text(whole, 0, row.begin) +
                      Banner(std::to_string(row.size).c_str(), std::to_string(row.limit).c_str()) +
                      Text(whole, row.end, row.size));
    }
}

TEST(Truncation, ALimitNotUnderTheSizeChangesNothing) {
    for (const uint64_t limit : {uint64_t{10}, uint64_t{11}, UINT64_MAX}) {
        std::vector<uint8_t> bytes = Counting(10);
        TruncateAroundMiddle(bytes, limit);
        EXPECT_EQ(bytes, Counting(10));
    }
    std::vector<uint8_t> empty;
    TruncateAroundMiddle(empty, 0);
    EXPECT_TRUE(empty.empty());
}
