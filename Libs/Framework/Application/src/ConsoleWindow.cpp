#include "Libs/Framework/Application/src/ConsoleWindow.h"

#include <windows.h>

#include <mutex>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

// The system's handler takes no argument, so the request stands here.
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
        Sleep(INFINITE); // returning would end the program at once; it ends by itself, or the system ends it
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

ConsoleWindow::ConsoleWindow(std::function<void()> stopRequest) : m_output(GetStdHandle(STD_OUTPUT_HANDLE)) {
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
    FreeConsole();
}

void ConsoleWindow::Write(std::string_view text) {
    DWORD written = 0;
    WriteFile(m_output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}
