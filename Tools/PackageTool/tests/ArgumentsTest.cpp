#include "Tools/PackageTool/src/Arguments.h"

#include <gtest/gtest.h>

TEST(Arguments, OptionsMayStandAnywhere) {
    Arguments arguments;
    std::string error;
    ASSERT_TRUE(ParseArguments({"--json", "unpack", "a.pkg", "--limit=2K", "-", "--to", "out", "--force"},
                               arguments, error))
        << error;
    EXPECT_EQ(arguments.command, "unpack");
    EXPECT_EQ(arguments.files, (std::vector<std::string>{"a.pkg", "-"}));
    EXPECT_EQ(arguments.to, "out");
    EXPECT_EQ(arguments.limit, 2048U);
    EXPECT_TRUE(arguments.json);
    EXPECT_TRUE(arguments.force);
    EXPECT_FALSE(arguments.stored);
}

TEST(Arguments, FilesAloneFollowTwoHyphens) {
    Arguments arguments;
    std::string error;
    ASSERT_TRUE(ParseArguments({"list", "--", "--json"}, arguments, error)) << error;
    EXPECT_EQ(arguments.files, std::vector<std::string>{"--json"});
    EXPECT_FALSE(arguments.json);
}

TEST(Arguments, SaysWhatMakesNoSense) {
    const struct {
        std::vector<std::string> words;
        const char* error;
    } cases[] = {
        {{}, "no command given"},
        {{"bogus"}, "unknown command bogus"},
        {{"list"}, "list needs a file"},
        {{"list", "a", "--bogus"}, "unknown option --bogus"},
        {{"list", "a", "--to", "b"}, "list has no option --to"},
        {{"list", "a", "--limit"}, "--limit needs a value"},
        {{"list", "a", "--limit", "many"}, "\"many\" is no size: give bytes, or a number with K, M or G"},
        {{"list", "a", "--json=1"}, "--json takes no value"},
        {{"list", "-", "-"}, "standard input can be read only once"},
        {{"unpack", "a"}, "unpack needs --to FOLDER"},
        {{"pack", "a", "--to", "b", "--packager", "c"},
         "--packager names a section of a configuration: it needs --config FILE"},
        {{"config-schema", "a"}, "config-schema takes no files"},
    };
    for (const auto& [words, expected] : cases) {
        SCOPED_TRACE(expected);
        Arguments arguments;
        std::string error;
        EXPECT_FALSE(ParseArguments(words, arguments, error));
        EXPECT_EQ(error, expected);
    }
}

TEST(Arguments, SizesHaveUnitsAndAnEnd) {
    uint64_t size = 0;
    EXPECT_TRUE(ParseSize("17179869183G", size));
    EXPECT_EQ(size, 17179869183ULL << 30);
    EXPECT_TRUE(ParseSize("18446744073709551615", size));
    EXPECT_EQ(size, UINT64_MAX);
    for (const char* const text : {"", "K", "-1", "1.5M", "17179869184G", "18446744073709551616", "1k"}) {
        EXPECT_FALSE(ParseSize(text, size)) << text;
    }
}
