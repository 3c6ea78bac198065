// Fails checks with the dialogs switched on and prints what becomes of them. The end-to-end tests start it,
// answer its dialogs and read its lines.
//
//   AssertDialogProbe [--data] [--under-debugger] [--rounds N]
//
// fails an assert, or a data check, N times at one place; under the debugger as the debuggee of a second
// copy.
//
//   AssertDialogProbe --nameless PROGRAM [ARGUMENT...]
//
// runs another program as its debuggee, with an empty text where a command line has the program's name. That
// makes the agent fail a check.
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

// Says what the debuggee sends to its debugger and where it breaks. Returns how it is to go on.
DWORD OnEvent(const DEBUG_EVENT& event, HANDLE process, const char*& image) {
    switch (event.dwDebugEventCode) {
    case CREATE_PROCESS_DEBUG_EVENT:
        image = static_cast<const char*>(event.u.CreateProcessInfo.lpBaseOfImage);
        return DBG_CONTINUE;
    case EXCEPTION_DEBUG_EVENT: {
        const EXCEPTION_RECORD& record = event.u.Exception.ExceptionRecord;
        const auto* address = static_cast<const char*>(record.ExceptionAddress);
        if (record.ExceptionCode != EXCEPTION_BREAKPOINT) {
            return DBG_EXCEPTION_NOT_HANDLED;
        }
        // Every debuggee breaks once in the system when it starts.
        if (address >= image && address < image + (1 << 24)) {
            Say("debugger", "break in the program");
        }
        return DBG_CONTINUE;
    }
    case OUTPUT_DEBUG_STRING_EVENT: {
        const OUTPUT_DEBUG_STRING_INFO& text = event.u.DebugString;
        std::vector<char> bytes(std::size_t{text.nDebugStringLength} + 1);
        ReadProcessMemory(process, text.lpDebugStringData, bytes.data(), text.nDebugStringLength, nullptr);
        Say("debugger", bytes.data());
        return DBG_CONTINUE;
    }
    default:
        return DBG_CONTINUE;
    }
}

// Its exit code.
int RunUnderDebugger(const wchar_t* program, std::wstring commandLine) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(program, commandLine.data(), nullptr, nullptr, TRUE, DEBUG_ONLY_THIS_PROCESS, nullptr,
                        nullptr, &startup, &process)) {
        return -1;
    }
    const char* image = nullptr;
    DEBUG_EVENT event = {};
    while (event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT && WaitForDebugEvent(&event, INFINITE)) {
        ContinueDebugEvent(event.dwProcessId, event.dwThreadId, OnEvent(event, process.hProcess, image));
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
    if (has(L"--nameless")) {
        std::wstring commandLine = L"\"\"";
        std::for_each(given.begin() + 2, given.end(),
                      [&](const std::wstring& argument) { commandLine += L" \"" + argument + L"\""; });
        return RunUnderDebugger(given[1].c_str(), commandLine);
    }
    if (has(L"--under-debugger")) {
        std::wstring commandLine = GetCommandLineW();
        return RunUnderDebugger(nullptr, commandLine.replace(commandLine.find(L"--under-debugger"), 16, L""));
    }
    EXP_GetAssertState()->showDialogs = 1;
    FailChecks(has(L"--data"), has(L"--rounds") ? std::stoi(given.back()) : 1);
    Say("probe", "ended");
    return 0;
}
