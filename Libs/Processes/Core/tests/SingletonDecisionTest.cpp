#include "Libs/Processes/Core/src/SingletonDecision.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using Copies = std::vector<SingletonDecision::Copy>;

TEST(SingletonDecision, TheExecutablesNameFollowsTheLastBackslash) {
    const struct {
        const char* argument;
        std::optional<std::string> name;
    } rows[] = {
        {R"(C:\Games\agent.exe)", "agent.exe"},
        {R"(..\agent.exe)", "agent.exe"},
        {R"(\agent.exe)", "agent.exe"},
        {"agent.exe", "agent.exe"},
        {"C:/Games/agent.exe", "C:/Games/agent.exe"},
        {R"(C:\Games/agent.exe)", "Games/agent.exe"},
        {R"(C:\Spiele für Jörg\agent 2.exe)", "agent 2.exe"},
        {"", ""},
        {R"(C:\Tools\)", std::nullopt},
        {R"(\)", std::nullopt},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.argument);
        EXPECT_EQ(SingletonDecision::ExecutableName(row.argument), row.name);
    }
}

TEST(SingletonDecision, TheOldestCopyStaysAndAllOthersGo) {
    const struct {
        const char* what;
        Copies copies;
        uint32_t self;
        bool mustStop;
    } rows[] = {
        {"nobody matches", {}, 8, false},
        {"alone", {{8, 100}}, 8, false},
        {"the older of two", {{8, 100}, {12, 101}}, 8, false},
        {"the younger of two", {{8, 100}, {12, 101}}, 12, true},
        {"older with the higher id", {{8, 101}, {12, 100}}, 12, false},
        {"younger with the lower id", {{8, 101}, {12, 100}}, 8, true},
        {"same moment, lower id", {{12, 100}, {8, 100}}, 8, false},
        {"same moment, higher id", {{12, 100}, {8, 100}}, 12, true},
        {"the middle of three", {{4, 99}, {8, 100}, {12, 101}}, 8, true},
        {"one other, itself unmatched", {{4, 99}}, 8, false},
        {"two others, itself unmatched", {{4, 199}, {12, 101}}, 8, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(SingletonDecision::MustStop(row.copies, row.self), row.mustStop);
    }
}

} // namespace
