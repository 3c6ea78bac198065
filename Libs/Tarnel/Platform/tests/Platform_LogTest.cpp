#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

using Platform::LogFileSink;

namespace {

void Write(const wchar_t* logName, const std::string& entry) {
    LogFileSink(logName, entry.data(), static_cast<uint32_t>(entry.size()), 1);
}

TEST(Log, RootAndNameMakeAPath) {
    const std::wstring longest(258, L'r');
    const struct {
        std::wstring root;
        const wchar_t* file;
        std::wstring path;
    } rows[] = {
        {L"C:\\Logs", L"\\KestrixInfo.log", L"C:/Logs/KestrixInfo.log"},
        {L"C:/Logs/", L"/sub\\a.log", L"C:/Logs/sub/a.log"},
        {longest + L"x", L"f", longest + L"/f"},
        {longest.substr(1) + L"\\x", L"f", longest.substr(1) + L"/f"},
        {L"", L"f", L""}, // nothing is written
    };
    for (const auto& row : rows) {
        EXP_SetLogRoot(row.root.c_str());
        wchar_t path[512] = {};
        EXPECT_EQ(EXP_GetLogPath(path, row.file), row.path.empty() ? 1 : row.path.size());
        EXPECT_EQ(path, row.path);
    }
}

// 22 bytes of prefix: a message of 257 bytes makes the longest entry on the stack.
TEST(Log, EntriesOfAnyLengthAreWhole) {
    const TestSupport::LogCapture log;
    std::vector<std::string> messages;
    for (const std::size_t length : {0u, 1u, 256u, 257u, 258u, 100000u}) {
        messages.push_back(std::string(length, 'm') + "ö");
        PLATFORM_LOG(Platform::InfoLog, "%s", messages.back().c_str());
    }
    EXPECT_EQ(log.Texts(Platform::InfoLog), messages);
}

TEST(Log, TextsFromOutsideAreShownNotObeyed) {
    const struct {
        std::string name;
        std::string shown;
    } rows[] = {
        {"a\r\n[2026-01-01 00:00:00]\t Uploaded", "a??[2026-01-01 00:00:00]? Uploaded"},
        {"\x1B[2J\x7F\b", "?[2J??"},
        {"\u0085\u009B2J", "??2J"},
        {"gpj.\u202Eexe\u2066\u200F\u061C\u2028", "gpj.?exe????"},
        {"Jo\u0308rg \u00A0太郎 😀 \u2010\u2030", "Jo\u0308rg \u00A0太郎 😀 \u2010\u2030"},
        {"\xFF\xE2\x80", "???"},
        {std::string(511, 'x') + "ä", std::string(511, 'x')},
        {std::string(510, 'x') + "äb", std::string(510, 'x') + "ä"},
    };
    for (const auto& row : rows) {
        const TestSupport::LogCapture log;
        PLATFORM_LOG(Platform::ErrorLog, " %s", Platform::ShownName(row.name).text);
        EXPECT_EQ(log.Errors(), std::vector<std::string>{" " + row.shown});
    }
}

// The files stay open until the program ends.
TEST(Log, FileHoldsTheBytesAsGivenAndIsTruncatedOnce) {
    const TestSupport::ScratchFolder scratch("Log");
    const std::wstring root = scratch.Folder().generic_wstring();
    scratch.MakeFile("Bytes.log", "from an earlier run, longer than the new entries");
    EXP_SetLogRoot((root + L"/missing").c_str());
    Write(L"Bytes.log", "lost, and no slot is used");
    EXP_SetLogRoot(root.c_str());
    Write(L"Bytes.log", "one");
    Write(L"Bytes.log", std::string("\0\r\n", 3));
    Write(nullptr, "no name");
    Write(L"Bytes.log", "two");
    EXPECT_EQ(scratch.ReadFile("Bytes.log"), std::string("one\0\r\ntwo", 9));
    for (int i = 2; i <= 33; ++i) { // there is room for 32
        Write((std::to_wstring(i) + L".log").c_str(), "x");
    }
    EXPECT_TRUE(scratch.Exists("32.log") && !scratch.Exists("33.log"));
    EXP_SetLogRoot(nullptr);
}

} // namespace
