#include "Libs/Framework/Core/src/ApplicationFolders.h"

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "tests/support/ScratchFolder.h"

namespace {

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

TEST(ApplicationFolders, ConfigPathFollowsTheProgram) {
    const char* argv[] = {"C:\\A\\agent.exe", "-configfile=D:\\own.json"};
    EXPECT_EQ(ResolveConfigPath(1, argv), "C:\\A\\agent.exe.json");
    EXPECT_EQ(ResolveConfigPath(2, argv), "D:\\own.json");
}

TEST(ApplicationFolders, ApplicationFolderComesFromTheFirstThatNamesOne) {
    RegisterApplicationDisplayName("Display");
    const char* argv[] = {"agent.exe", "-appfolder=C:\\own"};
    EXPECT_EQ(ResolveApplicationFolder(2, argv, "Configured"), "C:\\own");
    EXPECT_TRUE(EndsWith(ResolveApplicationFolder(1, argv, "Configured"), "\\Configured"));
    EXPECT_TRUE(EndsWith(ResolveApplicationFolder(1, argv, ""), "\\Display"));
}

TEST(ApplicationFolders, LogFolderFallsBack) {
    const char* argv[] = {"agent.exe", "-LOG=C:\\logs"};
    EXPECT_EQ(ResolveLogFolder(1, argv, "."), ".");
    EXPECT_EQ(ResolveLogFolder(2, argv, "."), "C:\\logs");
}

TEST(ApplicationFolders, LogRootIsSetOrRefused) {
    const TestSupport::ScratchFolder scratch("scratch Jörg");
    ASSERT_TRUE(SetLogRootFolder(scratch.Path()));
    wchar_t path[600] = {};
    const uint32_t length = EXP_GetLogPath(path, L"x.log");
    EXPECT_NE(std::wstring_view(path, length).find(L"Jörg"), std::wstring_view::npos);
    EXPECT_STREQ(SetLogRootFolder("bad \xFF").Text(), "Failed to translate log folder encoding");
    EXP_SetLogRoot(nullptr);
}

} // namespace
