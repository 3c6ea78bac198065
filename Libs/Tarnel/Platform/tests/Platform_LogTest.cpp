#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_LocalTime.h"
#include "tests/support/OnThreads.h"
#include "tests/support/ScratchFolder.h"

using Platform::LogFileSink;

namespace {

std::string g_captured;
std::wstring g_capturedName;

void CaptureEntry(const wchar_t* logName, const char* data, uint32_t length, int one) {
    g_capturedName = logName;
    g_captured.assign(data, length);
    EXPECT_EQ(1, one);
}

void Write(const wchar_t* logName, const std::string& entry) {
    LogFileSink(logName, entry.data(), static_cast<uint32_t>(entry.size()), 1);
}

std::string ReadText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string WithNines(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; }, '9');
    return text;
}

std::string EntryOfThread(int t) {
    std::string entry(static_cast<std::size_t>(10 + t), static_cast<char>('a' + t));
    return entry;
}

// How often each thread's entry stands in the file, whole; empty when anything else does.
std::vector<int> CountEntries(const std::filesystem::path& path, int threads) {
    std::vector<int> counts(static_cast<std::size_t>(threads));
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        const int t = line.empty() ? -1 : line[0] - 'a';
        if (t < 0 || t >= threads || line != EntryOfThread(t)) {
            return {};
        }
        ++counts[static_cast<std::size_t>(t)];
    }
    return counts;
}

// Log files stay open until the program ends, so every case uses log names of its own.
class LogTest : public testing::Test {
protected:
    void TearDown() override {
        EXP_SetLogRoot(nullptr);
        EXP_SetLogEventCallback(nullptr);
    }
};

} // namespace

TEST_F(LogTest, RootIsStoredWithForwardSlashesAndOneAtTheEnd) {
    const struct {
        const wchar_t* root;
        const wchar_t* file;
        const wchar_t* path;
    } rows[] = {
        {L"C:\\Logs", L"\\KestrixInfo.log", L"C:/Logs/KestrixInfo.log"},
        {L"C:/Logs/", L"/sub\\a.log", L"C:/Logs/sub/a.log"},
        {L"C:\\Logs\\", L"\\\\a", L"C:/Logs//a"}, // one leading separator alone is skipped
        {L".", nullptr, L"./"},
        {L"/", L"", L"/"},
    };
    for (const auto& row : rows) {
        EXP_SetLogRoot(row.root);
        wchar_t path[512] = {};
        const uint32_t length = EXP_GetLogPath(path, row.file);
        EXPECT_EQ(std::wstring(row.path), path);
        EXPECT_EQ(std::wstring(row.path).size(), length);
    }
}

TEST_F(LogTest, RootIsCutAt258Characters) {
    for (const std::size_t given : {257u, 258u, 259u, 1000u}) {
        EXP_SetLogRoot(std::wstring(given, L'r').c_str());
        wchar_t path[512] = {};
        EXP_GetLogPath(path, L"f");
        EXPECT_EQ(std::wstring(std::min<std::size_t>(given, 258), L'r') + L"/f", path);
    }
    std::wstring endsInSlash(300, L'r');
    endsInSlash[257] = L'\\';
    EXP_SetLogRoot(endsInSlash.c_str());
    wchar_t path[512] = {};
    EXPECT_EQ(258u, EXP_GetLogPath(path, nullptr)); // no second one behind the last that fits
}

TEST_F(LogTest, WithoutARootThePathIsNotWritten) {
    for (const wchar_t* const none : {static_cast<const wchar_t*>(nullptr), L""}) {
        EXP_SetLogRoot(L"/somewhere");
        EXP_SetLogRoot(none);
        wchar_t path[4] = L"abc";
        EXPECT_EQ(1u, EXP_GetLogPath(path, L"file"));
        EXPECT_EQ(std::wstring(L"abc"), path);
    }
}

TEST_F(LogTest, CallbackTakesEveryEntryUntilTheSinkIsReinstalled) {
    EXPECT_EQ(&LogFileSink, EXP_GetLogEventCallback());
    EXP_SetLogEventCallback(&CaptureEntry);
    EXPECT_EQ(&CaptureEntry, EXP_GetLogEventCallback());
    Platform::LogWrite(Platform::ErrorLog, "abc", 3);
    EXPECT_EQ("abc", g_captured);
    EXPECT_EQ(L"KestrixError.log", g_capturedName);
    EXP_SetLogEventCallback(nullptr);
    EXPECT_EQ(&LogFileSink, EXP_GetLogEventCallback());
}

// 22 bytes of prefix: a message of 257 bytes makes the longest entry of the stack path, 258 the first of the
// heap.
TEST_F(LogTest, EntriesOfAnyLengthAreWhole) {
    EXP_SetLogEventCallback(&CaptureEntry);
    for (const std::size_t length : {0u, 1u, 255u, 256u, 257u, 258u, 259u, 100000u}) {
        std::string message(length, 'm');
        if (length > 0) {
            message.back() = 'E';
        }
        PLATFORM_LOG(Platform::InfoLog, "%s", message.c_str());
        ASSERT_EQ(22 + length, g_captured.size());
        EXPECT_EQ("[9999-99-99 99:99:99]\t", WithNines(g_captured.substr(0, 22)));
        EXPECT_TRUE(g_captured.substr(22) == message) << length;
    }
}

TEST(TimePrefix, HasOneLengthWhateverTheClockSays) {
    EXPECT_STREQ("[2020-06-29 17:03:09]\t", Platform::FormatTimePrefix({2020, 6, 29, 17, 3, 9}).text);
    EXPECT_STREQ("[9999-00-99 00:00:00]\t", Platform::FormatTimePrefix({12345, -1, 100, 0, 0, 0}).text);
}

TEST_F(LogTest, FormatsSizesAsTheStandardSays) {
    EXP_SetLogEventCallback(&CaptureEntry);
    PLATFORM_LOG(Platform::EngineLog, " %zu %llu %s 100%%", std::size_t{1} << 40, 18446744073709551615ULL,
                 "ö");
    EXPECT_EQ(" 1099511627776 18446744073709551615 ö 100%", g_captured.substr(22));
}

TEST_F(LogTest, FileHoldsTheBytesAsGivenAndIsTruncatedOnce) {
    const TestSupport::ScratchFolder folder("LogBytes");
    EXP_SetLogRoot(folder.Wide().c_str());
    std::ofstream(folder.Folder() / "Bytes.log") << "from an earlier run, longer than the new entries";
    Write(L"Bytes.log", "one");
    Write(L"Bytes.log", std::string("\0\r\n", 3));
    Write(L"Bytes.log", "two");
    EXPECT_EQ(std::string("one\0\r\ntwo", 9), ReadText(folder.Folder() / "Bytes.log"));
}

TEST_F(LogTest, LostEntriesUseNoSlot) {
    const TestSupport::ScratchFolder folder("LogLost");
    Write(L"Lost.log", "no root yet");
    Write(nullptr, "no name");
    EXP_SetLogRoot((folder.Wide() + L"/missing").c_str());
    Write(L"Lost.log", "no such folder");
    EXP_SetLogRoot(folder.Wide().c_str());
    Write(L"Lost.log", "kept");
    EXPECT_EQ("kept", ReadText(folder.Folder() / "Lost.log"));
}

TEST_F(LogTest, ThreadsOpenANewLogOnceAndNeverMixEntries) {
    constexpr int Threads = 8;
    constexpr int Entries = 50;
    const TestSupport::ScratchFolder folder("LogThreads");
    EXP_SetLogRoot(folder.Wide().c_str());
    for (int round = 0; round < 10; ++round) {
        const std::wstring name = L"Threads" + std::to_wstring(round) + L".log";
        std::atomic<int> ready = 0;
        TestSupport::OnThreads(Threads, [&ready, &name](int t) {
            for (++ready; ready < Threads;) { // all at the new name at once
            }
            for (int i = 0; i < Entries; ++i) {
                Write(name.c_str(), EntryOfThread(t) + "\n");
            }
        });
        EXPECT_EQ(std::vector<int>(Threads, Entries), CountEntries(folder.Folder() / name, Threads)) << round;
    }
}
