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
    const struct {
        const char* pattern;
        const char* name;
        Verdict verdict;
    } rows[] = {
        {"dxdiag", "logs/dxdiag.txt", Verdict::Listed},
        {"dxdiag", "DxDiag.txt", Verdict::Allowed},
        {"\\.txt$", "a.txt.bak", Verdict::Allowed},
        {"ログ", "太郎/ログ.txt", Verdict::Listed},
        {"", "a.txt", Verdict::Listed},
        {"(.)\\1\\.log", "call.log", Verdict::Listed},
        // Digits that are no number of the grammar.
        {"report,20240101120000", "report,20240101120000.txt", Verdict::Listed},
        {"\\{0000000001\\}", "{0000000001}", Verdict::Listed},
        {"a{1,2}1234567890", "aa1234567890", Verdict::Listed},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(JudgeBy({"^x$", row.pattern}, row.name), row.verdict) << row.pattern;
    }
}

TEST(AttachmentBlacklist, RefusesWhatOverflowsTheCompiler) {
    AttachmentBlacklist blacklist;
    AttachmentBlacklist::BadPattern bad;
    const auto nested = [](std::size_t depth) { return std::string(depth, '(') + std::string(depth, ')'); };
    for (const std::string& pattern :
         {nested(100'000), std::string("a{22222222222222222222}"), std::string("[a]{1,22222222222222222222}"),
          std::string("(a)\\22222222222222222222")}) {
        EXPECT_FALSE(blacklist.Compile({pattern}, bad)) << pattern;
        EXPECT_EQ(bad.message, pattern.size() > AttachmentBlacklist::MaxPatternLength
                                   ? "It has more than 1000 bytes"
                                   : "A number in it has more than 9 digits");
    }
    EXPECT_TRUE(blacklist.Compile({nested(AttachmentBlacklist::MaxPatternLength / 2)}, bad));
}

// Each would need more stack than a thread has, or never end, if the search backtracked.
TEST(AttachmentBlacklist, NoNameMakesASearchEndless) {
    const std::string name(MaxAttachmentNameLength, 'a');
    for (const std::string& pattern :
         {std::string("([a-z]|[0-9])*!"), std::string(20, '(') + "a" + std::string(20, ')') + "*!",
          std::string("(a+a+)+!")}) {
        EXPECT_EQ(JudgeBy({pattern}, name), Verdict::Allowed) << pattern;
    }
}
