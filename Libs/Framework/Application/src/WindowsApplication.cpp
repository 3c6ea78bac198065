#include "Libs/Framework/Application/src/WindowsApplication.h"

#include <windows.h>

#include <new>
#include <string>
#include <vector>

#include "Libs/Framework/Application/src/LogLineEndings.h"
#include "Libs/Framework/Application/src/PermissionDialog.h"
#include "Libs/Framework/Core/src/CommandLine.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

WindowsApplication* WindowsApplication::s_this = nullptr;
std::recursive_mutex WindowsApplication::s_logLock;

WindowsApplication::WindowsApplication(int argc, const char** argv) {
    PLATFORM_ASSERT(s_this == nullptr);
    if (s_this) {
        return; // the log stays with the first
    }
    s_this = this;
    if (CommandLine::HasFlag(argc, argv, "-console")) {
        m_console = ConsoleWindow::Open([this] { RequestShutdownFromConsole(); });
    }
    m_previousCallback = EXP_GetLogEventCallback();
    EXP_SetLogEventCallback(&OnLogEvent);
}

WindowsApplication::~WindowsApplication() {
    StopProcesses();
    if (s_this != this) {
        return;
    }
    EXP_SetLogEventCallback(m_previousCallback);
    {
        const std::lock_guard lock(s_logLock);
        s_this = nullptr;
    }
    m_console.reset(); // while everything that its stop request uses still stands
}

ResultCode WindowsApplication::Initialize(int argc, const char** argv) {
    m_messagePumpProc = RegisterProcess<WindowsApplicationPump>("MessagePump");
    return ApplicationBase::Initialize(argc, argv);
}

ResultCode WindowsApplication::Run() {
    {
        const std::lock_guard lock(m_stopLock);
        m_running = true;
        if (m_stopRequested) {
            RequestShutdown();
        }
    }
    return ApplicationBase::Run();
}

ResultCode WindowsApplication::Shutdown() {
    return ApplicationBase::Shutdown();
}

ResultCode WindowsApplication::AskUploadPermission(UploadPermission& answer) {
    answer = UploadPermission::Refused;
    PLATFORM_ASSERT(m_messagePumpProc);
    WindowsApplicationPump* pWndProc =
        m_messagePumpProc ? Reflection::Query<WindowsApplicationPump>(*m_messagePumpProc) : nullptr;
    PLATFORM_ASSERT(pWndProc);
    if (!pWndProc) {
        return "No message pump to show the permission dialog";
    }
    bool allowed = false;
    const ResultCode result = ShowPermissionDialog(pWndProc->GetInstance(), allowed);
    answer = allowed ? UploadPermission::Allowed : UploadPermission::Refused;
    return result;
}

ResultCode WindowsApplication::GetVersion(PlatformHelpers::ModuleVersion& version, uint32_t& changelist) {
    std::vector<char> path(32768);
    if (GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())) == 0) {
        return "Failed to get module file name";
    }
    return PlatformHelpers::GetModuleVersion(path.data(), version, changelist);
}

void WindowsApplication::RequestShutdownFromConsole() {
    const std::lock_guard lock(m_stopLock);
    m_stopRequested = true;
    if (m_running) {
        RequestShutdown();
    }
}

void WindowsApplication::OnLogEvent(const wchar_t* logName, const char* data, uint32_t length, int) {
    const std::lock_guard lock(s_logLock);
    if (!s_this) {
        return; // the entry crossed the end of the application
    }
    try {
        const std::string lines = WithWindowsLineEndings({data, length});
        s_this->PassOn(logName, lines.c_str(), static_cast<uint32_t>(lines.size()));
    } catch (const std::bad_alloc&) {
        s_this->PassOn(logName, data, length); // rather an unfinished line than none
    }
}

void WindowsApplication::PassOn(const wchar_t* logName, const char* data, uint32_t length) {
    m_previousCallback(logName, data, length, 1);
    if (IsDebuggerPresent()) {
        OutputDebugStringA(data);
    }
    if (m_console) {
        m_console->Write({data, length});
    }
}
