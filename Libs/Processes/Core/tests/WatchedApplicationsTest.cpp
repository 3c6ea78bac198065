#include "Libs/Processes/Core/src/WatchedApplications.h"

#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;

TEST(WatchedApplications, ArgumentsExtendTheConfiguredNames) {
    const struct {
        const char* what;
        Names configured;
        std::vector<const char*> arguments;
        Names collected;
    } rows[] = {
        {"nothing", {}, {"agent.exe"}, {}},
        {"configured alone", {"a.exe"}, {"agent.exe"}, {"a.exe"}},
        {"added behind",
         {"a.exe"},
         {"agent.exe", "-process=b.exe", "-process=c.exe"},
         {"a.exe", "b.exe", "c.exe"}},
        {"any case of the option", {}, {"agent.exe", "-PROCESS=Game.exe"}, {"Game.exe"}},
        {"longer option", {}, {"agent.exe", "-processes=Game.exe"}, {"Game.exe"}},
        {"twice the same", {}, {"agent.exe", "-process=a.exe", "-process=a.exe"}, {"a.exe"}},
        {"configured already", {"a.exe"}, {"agent.exe", "-process=a.exe"}, {"a.exe"}},
        {"other case of the name", {"a.exe"}, {"agent.exe", "-process=A.exe"}, {"a.exe", "A.exe"}},
        {"configured twice stays", {"a.exe", "a.exe"}, {"agent.exe"}, {"a.exe", "a.exe"}},
        {"no equals sign", {}, {"agent.exe", "-process", "a.exe"}, {}},
        {"name with an equals sign", {}, {"agent.exe", "-process=a=b.exe"}, {"a=b.exe"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(CollectWatchedApplications(row.configured, static_cast<int>(row.arguments.size()),
                                             row.arguments.data()),
                  row.collected);
    }
}

} // namespace
