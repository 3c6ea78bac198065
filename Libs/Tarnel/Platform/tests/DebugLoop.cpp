#include "Libs/Tarnel/Platform/tests/DebugLoop.h"

#include <cstdio>
#include <vector>

#include <windows.h>

namespace {

class Debuggee {
public:
    // What the exception is continued with.
    DWORD OnException(const EXCEPTION_RECORD& record) {
        if (record.ExceptionCode != EXCEPTION_BREAKPOINT) {
            return DBG_EXCEPTION_NOT_HANDLED;
        }
        if (m_hasStarted) {
            Say("break");
        }
        m_hasStarted = true;
        return DBG_CONTINUE;
    }

    void OnText(const OUTPUT_DEBUG_STRING_INFO& text) const {
        std::vector<char> bytes(std::size_t{text.nDebugStringLength} + 1);
        SIZE_T read = 0;
        ReadProcessMemory(m_process, text.lpDebugStringData, bytes.data(), text.nDebugStringLength, &read);
        if (!text.fUnicode) {
            Say(bytes.data());
        }
    }

    // False when it has ended.
    bool OnEvent(const DEBUG_EVENT& event, DWORD& continuation) {
        continuation = DBG_CONTINUE;
        switch (event.dwDebugEventCode) {
        case CREATE_PROCESS_DEBUG_EVENT:
            m_process = event.u.CreateProcessInfo.hProcess;
            CloseHandle(event.u.CreateProcessInfo.hFile);
            return true;
        case LOAD_DLL_DEBUG_EVENT:
            CloseHandle(event.u.LoadDll.hFile);
            return true;
        case EXCEPTION_DEBUG_EVENT:
            continuation = OnException(event.u.Exception.ExceptionRecord);
            return true;
        case OUTPUT_DEBUG_STRING_EVENT:
            OnText(event.u.DebugString);
            return true;
        case EXIT_PROCESS_DEBUG_EVENT:
            m_exitCode = static_cast<int>(event.u.ExitProcess.dwExitCode);
            return false;
        default:
            return true;
        }
    }

    int ExitCode() const { return m_exitCode; }

private:
    static void Say(const char* text) {
        std::printf("debugger: %s\n", text);
        std::fflush(stdout);
    }

    HANDLE m_process = nullptr;
    bool m_hasStarted = false;
    int m_exitCode = -1;
};

} // namespace

int RunUnderDebugger(const wchar_t* application, std::wstring commandLine) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(application, commandLine.data(), nullptr, nullptr, TRUE, DEBUG_ONLY_THIS_PROCESS,
                        nullptr, nullptr, &startup, &process)) {
        std::printf("debugger: can't start, error %lu\n", GetLastError());
        return -1;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    Debuggee debuggee;
    for (bool isRunning = true; isRunning;) {
        DEBUG_EVENT event = {};
        if (!WaitForDebugEvent(&event, INFINITE)) {
            return -1;
        }
        DWORD continuation = DBG_CONTINUE;
        isRunning = debuggee.OnEvent(event, continuation);
        ContinueDebugEvent(event.dwProcessId, event.dwThreadId, continuation);
    }
    return debuggee.ExitCode();
}
