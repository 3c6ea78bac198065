#include "Libs/Framework/Core/src/CommandLine.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

namespace {

constexpr const char* Absent = nullptr;

struct Row {
    const char* what;
    std::vector<const char*> arguments;
    const char* option;
    const char* value;
};

TEST(CommandLine, FindsOptionValues) {
    const Row rows[] = {
        {"no arguments", {}, "-config", Absent},
        {"only the program", {"C:\\agent.exe"}, "-config", Absent},
        {"plain", {"agent.exe", "-config=C:\\x.json"}, "-config", "C:\\x.json"},
        {"any case", {"agent.exe", "-LOG=C:\\x"}, "-log", "C:\\x"},
        {"no equals sign", {"agent.exe", "-log"}, "-log", Absent},
        {"value in the next argument", {"agent.exe", "-log", "C:\\x"}, "-log", Absent},
        {"empty value", {"agent.exe", "-log="}, "-log", Absent},
        {"an empty first value hides a later one", {"agent.exe", "-log=", "-log=C:\\x"}, "-log", Absent},
        {"one without equals sign does not", {"agent.exe", "-log", "-log=C:\\x"}, "-log", "C:\\x"},
        {"the first wins", {"agent.exe", "-config=a", "-config=b"}, "-config", "a"},
        {"longer name", {"agent.exe", "-configfile=x"}, "-config", "x"},
        {"shorter name", {"agent.exe", "-conf=x"}, "-config", Absent},
        {"text before the option", {"agent.exe", "x-config=y"}, "-config", Absent},
        {"more equals signs belong to the value", {"agent.exe", "-log=a=b="}, "-log", "a=b="},
        {"the program path counts too", {"-config=x", "-config=y"}, "-config", "x"},
        {"UTF-8 value", {"agent.exe", "-appFolder=C:\\Jörg\\太郎"}, "-appfolder", "C:\\Jörg\\太郎"},
        {"missing argument", {"agent.exe", nullptr, "-log=x"}, "-log", "x"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const auto value =
            CommandLine::FindOption(static_cast<int>(row.arguments.size()), row.arguments.data(), row.option);
        ASSERT_EQ(value.has_value(), row.value != Absent);
        if (value) {
            EXPECT_EQ(*value, row.value);
        }
    }
}

TEST(CommandLine, AnOptionHasAName) {
    const char* argv[] = {"agent.exe", "=x", "-log=x"};
    for (const char* const none : {static_cast<const char*>(nullptr), ""}) {
        for (const int argc : {0, 3}) {
            const AssertCapture capture;
            EXPECT_FALSE(CommandLine::FindOption(argc, argv, none).has_value());
            EXPECT_EQ(capture.Texts(), std::vector<std::string>{"opt && *opt|"});
        }
    }
}

TEST(CommandLine, FlagMustBeTheWholeArgument) {
    const auto hasConsole = [](const char* argument) {
        const char* argv[] = {"agent.exe", argument};
        return CommandLine::HasFlag(2, argv, "-console");
    };
    EXPECT_TRUE(hasConsole("-console"));
    EXPECT_TRUE(hasConsole("-CONSOLE"));
    EXPECT_FALSE(hasConsole("-console=1"));
    EXPECT_FALSE(hasConsole("-consol"));
    EXPECT_FALSE(hasConsole(""));
    EXPECT_FALSE(hasConsole(nullptr));
}

} // namespace
