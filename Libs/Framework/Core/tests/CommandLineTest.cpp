#include "Libs/Framework/Core/src/CommandLine.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

TEST(CommandLine, FindsOptionValues) {
    const struct {
        const char* what;
        std::vector<const char*> arguments;
        const char* value;
    } rows[] = {
        {"no arguments", {}, ""},
        {"any case", {"agent.exe", "-LOG=C:\\Jörg"}, "C:\\Jörg"},
        {"no equals sign", {"agent.exe", "-log", "C:\\x"}, ""},
        {"an empty first value hides a later one", {"agent.exe", "-log=", "-log=x"}, ""},
        {"one without equals sign does not", {"agent.exe", "-log", "-log=x"}, "x"},
        {"the first wins", {"agent.exe", "-log=a", "-log=b"}, "a"},
        {"longer name, value with equals signs", {"agent.exe", "-logfile=a=b="}, "a=b="},
        {"shorter name", {"agent.exe", "-lo=x"}, ""},
        {"text before the option", {"agent.exe", "x-log=y"}, ""},
        {"the program path counts too", {"-log=x", "-log=y"}, "x"},
        {"missing argument", {"agent.exe", nullptr, "-log=x"}, "x"},
    };
    for (const auto& row : rows) {
        const auto count = static_cast<int>(row.arguments.size());
        EXPECT_EQ(CommandLine::FindOption(count, row.arguments.data(), "-log").value_or(""), row.value)
            << row.what;
    }
}

TEST(CommandLine, AnOptionHasAName) {
    const char* argv[] = {"agent.exe", "=x"};
    for (const char* const none : {static_cast<const char*>(nullptr), ""}) {
        const AssertCapture capture;
        EXPECT_FALSE(CommandLine::FindOption(2, argv, none).has_value());
        EXPECT_EQ(capture.Texts(), std::vector<std::string>{"opt && *opt|"});
    }
}
