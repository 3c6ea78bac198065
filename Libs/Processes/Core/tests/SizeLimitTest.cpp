#include "Libs/Processes/Core/src/SizeLimit.h"

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

namespace {

std::vector<uint8_t> Bytes(std::size_t size) {
    std::vector<uint8_t> bytes(size, 'x');
    return bytes;
}

} // namespace

TEST(SizeLimit, AnyLimitThatEndsTheNameCounts) {
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
    EXPECT_TRUE(IsAttachmentOverSizeLimit({{"", 3}}, "anything", 4));
}

TEST(SizeLimit, TruncatesToTheFirstLimitForTheFile) {
    std::vector<uint8_t> bytes = Bytes(1000);
    TruncateToSizeLimit({{".log", 1}, {".txt", 600}, {".txt", 10}}, "a.txt", bytes);
    EXPECT_NE(std::string(bytes.begin(), bytes.end()).find("from 1000 to 600 during"), std::string::npos);
}

TEST(SizeLimit, AFileUnderItsFirstLimitIsReportedAndStaysWhole) {
    AssertCapture asserts;
    std::vector<uint8_t> bytes = Bytes(500);
    TruncateToSizeLimit({{".txt", 1000}, {".TXT", 10}}, "a.txt", bytes);
    ASSERT_EQ(asserts.Failures().size(), 1U);
    EXPECT_EQ(asserts.Failures()[0].expression, "fileSize > maxFileSize");
    EXPECT_EQ(bytes, Bytes(500));
}

TEST(SizeLimit, AFileWithoutALimitIsReported) {
    AssertCapture asserts;
    std::vector<uint8_t> bytes = Bytes(500);
    TruncateToSizeLimit({{".log", 10}}, "a.txt", bytes);
    ASSERT_EQ(asserts.Failures().size(), 2U);
    EXPECT_EQ(asserts.Failures()[0].expression, "IsAttachmentOverSizeLimit(file, attBytes.size())");
    EXPECT_EQ(
        asserts.Failures()[1].expression,
        "It is expected that this function is not called without first calling IsAttachmentOverSizeLimit to "
        "ensure there is a limit");
    EXPECT_EQ(FindAttachmentSizeLimit({}, "a.txt"), 0U);
}
