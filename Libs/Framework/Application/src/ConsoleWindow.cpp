#include "Libs/Framework/Application/src/ConsoleWindow.h"

#include <windows.h>

#include <mutex>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

// The system's handler takes no argument, so the request is kept here.
std::mutex g_lock;
std::function<void()> g_stopRequest;

BOOL WINAPI HandleControl(DWORD event) {
    {
        const std::lock_guard lock(g_lock);
        if (!g_stopRequest) {
            return FALSE;
        }
        g_stopRequest();
    }
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        Sleep(INFINITE); // returning would end the program at once, in the middle of its work
    }
    return TRUE;
}

} // namespace

std::unique_ptr<ConsoleWindow> ConsoleWindow::Open(std::function<void()> stopRequest) {
    if (!AllocConsole()) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to allocate console. Error=%d",
                     static_cast<int>(GetLastError()));
        return nullptr;
    }
    return std::unique_ptr<ConsoleWindow>(new ConsoleWindow(std::move(stopRequest)));
}

// By name: the standard output may be a pipe or a file of whoever started the agent.
ConsoleWindow::ConsoleWindow(std::function<void()> stopRequest)
    : m_output(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_EXISTING, 0, nullptr)) {
    SetConsoleOutputCP(CP_UTF8);
    const std::lock_guard lock(g_lock);
    g_stopRequest = std::move(stopRequest);
    SetConsoleCtrlHandler(&HandleControl, TRUE);
}

ConsoleWindow::~ConsoleWindow() {
    SetConsoleCtrlHandler(&HandleControl, FALSE);
    {
        const std::lock_guard lock(g_lock);
        g_stopRequest = nullptr;
    }
    if (m_queue.Close()) { // else the end of the process closes it, under a write that waits
        CloseHandle(m_output);
        FreeConsole();
    }
}
