#include "Libs/Processes/Core/src/UploadReceipts.h"

#include <gtest/gtest.h>

#include "tests/support/ScratchFolder.h"

namespace {

constexpr char Line[] = R"({"Time":"2024-05-06T07:08:09Z","Submission":"a","Key":"b","Size":1,"Seconds":0.5})"
                        "\n";

std::string Lines(std::size_t count) {
    std::string text;
    while (count-- > 0) {
        text += Line;
    }
    return text;
}

} // namespace

TEST(UploadReceipts, TheLastThousandLinesStay) {
    const struct {
        const char* what;
        std::string before;
        std::string kept;
    } rows[] = {
        {"none", "", ""},
        {"a torn one", Lines(1) + "{\"Time\":\"20", Lines(1) + "{\"Time\":\"20\n"},
        {"all but one", "x\n" + Lines(998), "x\n" + Lines(998)},
        {"as many as fit", "x\n" + Lines(999), Lines(999)},
        {"far too many", "\n\n" + Lines(100'000), Lines(999)},
    };
    for (const auto& row : rows) {
        const TestSupport::ScratchFolder folder;
        const std::string path = folder.MakeFile("receipts", row.before);
        EXPECT_STREQ(UploadReceipts::Add(path, {"", "crash \"7\"", "5d41", 42, 0.12345}).Text(), "OK");
        const std::string text = folder.ReadFile("receipts");
        ASSERT_TRUE(text.starts_with(row.kept)) << row.what;
        const auto added = UploadReceipts::Read(std::string_view(text).substr(row.kept.size()));
        ASSERT_EQ(added.receipts.size(), 1u) << row.what;
        EXPECT_EQ(added.receipts[0].submission, "crash \"7\"");
        EXPECT_EQ(added.receipts[0].seconds, 0.123);
        EXPECT_EQ(added.receipts[0].time.size(), sizeof("2024-05-06T07:08:09Z") - 1);
        EXPECT_FALSE(folder.Exists("receipts.new"));
    }
}
