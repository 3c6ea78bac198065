#include "Libs/Framework/Core/src/CommandLine.h"

#include <vector>

#include <gtest/gtest.h>

TEST(CommandLine, FindsOptionValues) {
    const struct {
        const char* what;
        std::vector<const char*> arguments;
        const char* value;
    } rows[] = {
        {"any case", {"agent.exe", "-LOG=C:\\Jörg"}, "C:\\Jörg"},
        {"an empty first value hides a later one", {"agent.exe", "-log=", "-log=x"}, ""},
        {"one without equals sign does not", {"agent.exe", "-log", "-log=x"}, "x"},
        {"longer name, value with equals signs", {"agent.exe", "-logfile=a=b="}, "a=b="},
        {"shorter name", {"agent.exe", "-lo=x"}, ""},
        {"text before the option", {"agent.exe", "x-log=y"}, ""},
        {"the first wins, even as the program's path", {"-log=x", "-log=y"}, "x"},
        {"missing argument", {"agent.exe", nullptr, "-log=x"}, "x"},
    };
    for (const auto& row : rows) {
        const auto count = static_cast<int>(row.arguments.size());
        EXPECT_EQ(CommandLine::FindOption(count, row.arguments.data(), "-log").value_or(""), row.value)
            << row.what;
    }
}
