#include "Tools/PackageTool/src/Arguments.h"

#include <gtest/gtest.h>

TEST(Arguments, SaysWhatMakesNoSense) {
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{}, "no command given"},
        {{"bogus"}, "unknown command bogus"},
        {{"list", "a", "--bogus"}, "unknown option --bogus"},
        {{"list", "a", "--limit"}, "--limit needs a value"},
        {{"list", "a", "--limit", "many"}, "\"many\" is not a size: give bytes, or a number with K, M or G"},
        {{"list", "a", "--json=1"}, "--json takes no value"},
        {{"list", "-", "-"}, "standard input can be read only once"},
        {{"unpack", "a"}, "unpack needs --to FOLDER"},
        {{"config-schema", "a"}, "config-schema takes no files"},
    };
    for (const auto& [words, expected] : rows) {
        Arguments arguments;
        std::string error;
        EXPECT_FALSE(ParseArguments(words, arguments, error)) << expected;
        EXPECT_EQ(error, expected);
    }
}

TEST(Arguments, SizesHaveUnitsAndAnEnd) {
    uint64_t size = 0;
    EXPECT_TRUE(ParseSize("17179869183G", size));
    EXPECT_EQ(size, 17179869183u << 30);
    EXPECT_TRUE(ParseSize("18446744073709551615", size));
    EXPECT_EQ(size, UINT64_MAX);
    EXPECT_TRUE(ParseSize("2K", size));
    EXPECT_EQ(size, 2048u);
    for (const char* const text : {"", "K", "-1", "1.5M", "17179869184G", "18446744073709551616", "1k"}) {
        EXPECT_FALSE(ParseSize(text, size)) << text;
    }
}
