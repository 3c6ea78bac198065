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
    EXPECT_EQ(JudgeBy({"(.)\\1\\.log"}, "call.log"), Verdict::Listed);
    EXPECT_EQ(JudgeBy({"(.)\\1\\.log"}, "calk.log"), Verdict::Allowed);
}

TEST(AttachmentBlacklist, RefusesWhatTheCompilerOfPatternsCantTake) {
    AttachmentBlacklist blacklist;
    AttachmentBlacklist::BadPattern bad;
    const std::string deep = std::string(100000, '(') + std::string(100000, ')');
    EXPECT_FALSE(blacklist.Compile({deep}, bad).Succeeded());
    EXPECT_EQ(bad.message, "It is too long, or a number in it too large");
    EXPECT_FALSE(blacklist.Compile({"a{1,22222222222222222222}"}, bad).Succeeded());
    const std::size_t half = AttachmentBlacklist::MaxPatternLength / 2;
    EXPECT_TRUE(blacklist.Compile({std::string(half, '(') + std::string(half, ')')}, bad).Succeeded());
}

// Each of them would need more stack than a thread has, or more time than anybody has, if the search tried
// one way after the other.
TEST(AttachmentBlacklist, NoNameMakesASearchEndless) {
    const std::string name(MaxAttachmentNameLength, 'a');
    EXPECT_EQ(JudgeBy({"([a-z]|[0-9])*!"}, name), Verdict::Allowed);
    EXPECT_EQ(JudgeBy({std::string(20, '(') + "a" + std::string(20, ')') + "*!"}, name), Verdict::Allowed);
    EXPECT_EQ(JudgeBy({"(a+a+)+!"}, name), Verdict::Allowed);
}
