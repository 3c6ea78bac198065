#include "Libs/Processes/Core/src/AttachmentBlacklist.h"

#include <gtest/gtest.h>

#include <string>

#include "Libs/Processes/Core/src/AttachmentName.h"

namespace {

using Verdict = AttachmentBlacklist::Verdict;

Verdict JudgeBy(const std::vector<std::string>& patterns, const std::string& name) {
    AttachmentBlacklist blacklist;
    AttachmentBlacklist::BadPattern bad;
    EXPECT_TRUE(blacklist.Compile(patterns, bad)) << bad.pattern << ": " << bad.message;
    return blacklist.Judge(name);
}

} // namespace

TEST(AttachmentBlacklist, SearchesAnywhereAndMindsCase) {
    EXPECT_EQ(JudgeBy({}, "a.txt"), Verdict::Allowed);
    EXPECT_EQ(JudgeBy({"dxdiag"}, "logs/dxdiag.txt"), Verdict::Listed);
    EXPECT_EQ(JudgeBy({"dxdiag"}, "DxDiag.txt"), Verdict::Allowed);
    EXPECT_EQ(JudgeBy({"^x", "\\.txt$"}, "a.txt"), Verdict::Listed);
    EXPECT_EQ(JudgeBy({"^x", "\\.txt$"}, "a.txt.bak"), Verdict::Allowed);
    EXPECT_EQ(JudgeBy({"ログ"}, "太郎/ログ.txt"), Verdict::Listed);
    EXPECT_EQ(JudgeBy({""}, "a.txt"), Verdict::Listed);
}

TEST(AttachmentBlacklist, TellsTheBadPatternAndItsFault) {
    AttachmentBlacklist blacklist;
    AttachmentBlacklist::BadPattern bad;
    const ResultCode result = blacklist.Compile({"fine", "(open"}, bad);
    EXPECT_STREQ(result.Text(), "Invalid regular expression in attachment black list");
    EXPECT_EQ(bad.pattern, "(open");
    EXPECT_FALSE(bad.message.empty());
}

// The search goes one level deeper for each byte of the name.
TEST(AttachmentBlacklist, TheLongestNameThatIsSearchedFitsOnTheStack) {
    EXPECT_EQ(JudgeBy({"([a-z]|[0-9])*!"}, std::string(MaxAttachmentNameLength, 'a')), Verdict::Allowed);
}
