#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "tests/support/AssertCapture.h"
#include "tests/support/ScratchFolder.h"

// A program of its own: the table of log files is never emptied.
namespace {

void Write(int number, char entry) {
    const std::wstring name = L"Log" + std::to_wstring(number);
    Platform::LogFileSink(name.c_str(), &entry, 1, 1);
}

} // namespace

TEST(LogFileSink, The33rdNameIsReportedAndDropped) {
    const TestSupport::ScratchFolder folder("LogLimit");
    EXP_SetLogRoot(folder.Wide().c_str());
    const AssertCapture capture;
    for (int i = 0; i < 34; ++i) {
        Write(i, 'a');
    }
    Write(0, 'b'); // the first ones go on
    Write(31, 'b');
    const std::string text = "false|Exceeded maximum log file count of 32";
    EXPECT_EQ((std::vector<std::string>{text, text}), capture.Texts());
    EXPECT_EQ("Libs/Tarnel/Platform/src/Common/Platform_Log", capture.Failures().at(0).sourceUnit);
    EXPECT_EQ(2u, std::filesystem::file_size(folder.Folder() / "Log31"));
    EXPECT_FALSE(std::filesystem::exists(folder.Folder() / "Log32"));
}

// The report must not hold the log's lock: this handler would wait for ever.
TEST(LogFileSink, HandlerOfTheReportMayLog) {
    const TestSupport::ScratchFolder folder("LogLimitHandler");
    EXP_SetLogRoot(folder.Wide().c_str());
    const AssertCapture capture;
    static int s_calls = 0;
    EXP_GetAssertState()->handlers[0] = [](const char*, int, const char*, const char*) {
        ++s_calls;
        PLATFORM_LOG(L"Log0", " from the handler");
        return static_cast<int>(Platform::AssertAnswer_IgnoreOnce);
    };
    for (int i = 100; i < 133; ++i) {
        Write(i, 'a');
    }
    EXPECT_GE(s_calls, 1);
}
