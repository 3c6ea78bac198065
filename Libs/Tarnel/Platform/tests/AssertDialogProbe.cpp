// Fails checks with the dialogs switched on and prints what becomes of them. The end-to-end tests start it,
// answer its dialogs and read its lines.
//
//   AssertDialogProbe [--data] [--rounds N]
//
// fails an assert, or a data check, N times at one place.
//
//   AssertDialogProbe --debug PROGRAM [ARGUMENT...]
//
// runs a program as its debuggee, with an empty text where a command line has the program's name. That makes
// the agent fail a check.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

#include <shellapi.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace {

void Say(const char* who, const char* text) {
    std::printf("%s: %s\n", who, text);
    std::fflush(stdout);
}

// Says where it breaks; returns its exit code.
int RunUnderDebugger(const std::wstring& program, std::wstring commandLine) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, DEBUG_ONLY_THIS_PROCESS,
                        nullptr, nullptr, &startup, &process)) {
        return -1;
    }
    DEBUG_EVENT event = {};
    while (event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT && WaitForDebugEvent(&event, INFINITE)) {
        const bool isException = event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT;
        const bool isBreak =
            isException && event.u.Exception.ExceptionRecord.ExceptionCode == EXCEPTION_BREAKPOINT;
        if (isBreak) {
            Say("debugger", "break");
        }
        ContinueDebugEvent(event.dwProcessId, event.dwThreadId,
                           isException && !isBreak ? DBG_EXCEPTION_NOT_HANDLED : DBG_CONTINUE);
    }
    return static_cast<int>(event.u.ExitProcess.dwExitCode);
}

void FailChecks(bool isData, int rounds) {
    for (int round = 0; round < rounds; ++round) {
        Say("probe", "asks");
        if (isData) {
            PLATFORM_DATA_ERROR(round < 0, "Grüße an 太郎");
        } else {
            PLATFORM_ASSERT_MESSAGE(round < 0, "Grüße an 太郎");
        }
        Say("probe", "went on");
    }
}

} // namespace

int main() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    const std::vector<std::wstring> given(arguments + 1, arguments + count);
    const auto has = [&](std::wstring_view option) {
        return std::ranges::find(given, option) != given.end();
    };
    if (has(L"--debug")) {
        std::wstring commandLine = L"\"\"";
        std::for_each(given.begin() + 2, given.end(),
                      [&](const std::wstring& argument) { commandLine += L" \"" + argument + L"\""; });
        return RunUnderDebugger(given[1], commandLine);
    }
    EXP_GetAssertState()->showDialogs = 1;
    FailChecks(has(L"--data"), has(L"--rounds") ? std::stoi(given.back()) : 1);
    Say("probe", "ended");
    return 0;
}
