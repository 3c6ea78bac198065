#include "Libs/Processes/Core/src/AttachmentLimit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace {

std::string Truncated(const std::vector<AttachmentLimit>& limits, const std::string& content) {
    Platform::MemorySource file({reinterpret_cast<const uint8_t*>(content.data()), content.size()});
    LimitedBytes limited(file, limits, "a.txt");
    std::string whole(limited.GetSize(), ' ');
    const std::span room(reinterpret_cast<uint8_t*>(whole.data()), whole.size());
    for (std::size_t at = 0; at < room.size(); at += 7) { // no piece ends where a part does
        EXPECT_TRUE(limited.Read(at, room.subspan(at, std::min<std::size_t>(7, room.size() - at))));
    }
    return whole;
}

std::string Counting(std::size_t size) {
    std::string text(size, ' ');
    std::iota(text.begin(), text.end(), '\0');
    return text;
}

} // namespace

TEST(AttachmentLimit, AnyLimitThatEndsTheNameCounts) {
    const std::vector<AttachmentLimit> limits = {{".txt", 1000}, {".TXT", 10}, {"log", 5}};
    const struct {
        const char* file;
        uint64_t size;
        bool isOver;
    } rows[] = {{"a.txt", 10, false},  {"a.txt", 11, true},        {"A.Txt", 11, true},
                {"game.log", 6, true}, {"catalog", 6, true},       {"log", 6, true},
                {"og", 6, false},      {"a.txt.bak", 5000, false}, {"", UINT64_MAX, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(IsAttachmentOverSizeLimit(limits, row.file, row.size), row.isOver) << row.file << row.size;
    }
}

TEST(AttachmentLimit, CutIsHalvedInSinglePrecisionAndBothEndsStay) {
    const struct {
        uint64_t size, limit, begin, end;
    } rows[] = {
        {1001, 600, 300, 700},                  // 401 and 1001: both halves lose their fraction
        {1000, 950, 475, 525},                  // the banner is longer than the cut
        {1, 0, 0, 0},                           // half of one is nothing
        {16777219, 0, 0, 16777219},             // 2^24 + 4 as a float: the cut would pass the end
        {16777219, 16777209, 8388605, 8388615}, // the middle moves, the excess of ten does not
        {UINT64_MAX, 1, 0, UINT64_MAX},
    };
    for (const auto& row : rows) {
        const std::string sizes = std::to_string(row.size) + " to " + std::to_string(row.limit);
        const TruncationCut cut = ComputeTruncationCut(row.size, row.limit);
        EXPECT_EQ(cut.begin, row.begin) << sizes;
        EXPECT_EQ(cut.end, row.end) << sizes;
        if (row.size <= 1001) {
            const std::string whole = Counting(row.size);
            EXPECT_EQ(Truncated({{".log", 1}, {".txt", row.limit}, {".txt", 0}}, whole),
                      whole.substr(0, row.begin) + "\n\n<<<<<<<<<<  truncated file size from " + sizes +
                          " during bug submission >>>>>>>>>>\n\n" + whole.substr(row.end));
        }
    }
}
