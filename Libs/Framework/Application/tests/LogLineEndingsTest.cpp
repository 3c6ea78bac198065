#include "Libs/Framework/Application/src/LogLineEndings.h"

#include <gtest/gtest.h>

namespace {

TEST(LogLineEndings, EndsEveryLineForWindows) {
    const struct {
        const char* text;
        const char* lines;
    } rows[] = {
        {"", ""},
        {"a", "a\r\n"},
        {"a\n", "a\r\n"},
        {"a\r\n", "a\r\n"},
        {"a\nb", "a\r\nb\r\n"},
        {"a\r\nb\r\n", "a\r\nb\r\n"},
        {"\n", "\n"},
        {"\nabc", "\nabc\r\n"},
        {"\n\nabc", "\n\r\nabc\r\n"},
        {"a\n\nb", "a\r\n\r\nb\r\n"},
        {"a\r", "a\r\r\n"},
        {"ä\n太", "ä\r\n太\r\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(WithWindowsLineEndings(row.text), row.lines) << "of \"" << row.text << '"';
    }
}

} // namespace
