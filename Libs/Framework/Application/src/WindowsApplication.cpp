#include "Libs/Framework/Application/src/WindowsApplication.h"

#include <windows.h>

#include <new>
#include <string>
#include <string_view>

#include "Libs/Framework/Application/src/PermissionDialog.h"
#include "Libs/Framework/Core/src/CommandLine.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

Reflection_DefinePolymorphicType(WindowsApplicationPump);

namespace {

constexpr uint32_t TimeBetweenPolls = 250; // milliseconds

// A log entry as whole lines: every line feed gets a carriage return before it, except at the very start, and
// a text that does not end in a line feed gets a line end.
std::string WithLineEndings(std::string_view text) {
    std::string lines;
    lines.reserve(text.size() + 2); // an entry rarely has line feeds of its own
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && i > 0 && text[i - 1] != '\r') {
            lines += '\r';
        }
        lines += text[i];
    }
    if (!lines.empty() && lines.back() != '\n') {
        lines += "\r\n";
    }
    return lines;
}

} // namespace

ResultCode WindowsApplicationPump::Initialize(const JsonDocument&, int, const char**) {
    HINSTANCE instance = GetModuleHandleW(nullptr);
    m_instance = instance;

    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.style = CS_VREDRAW | CS_HREDRAW;
    windowClass.lpfnWndProc = &DefWindowProcW;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = L"BugHelperClass";
    if (!RegisterClassExW(&windowClass)) {
        return "Failed to register window class";
    }
    m_window = CreateWindowExW(0, windowClass.lpszClassName, L"BugHelper", 0, 0, 0, 1, 1, HWND_MESSAGE,
                               nullptr, instance, nullptr);
    return Platform::Success;
}

bool WindowsApplicationPump::ThreadMain() {
    return RunRounds(TimeBetweenPolls, [window = static_cast<HWND>(m_window)] {
        MSG message;
        while (PeekMessageW(&message, window, 0, 0, PM_NOREMOVE)) {
            if (GetMessageW(&message, window, 0, 0)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
        }
    });
}

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
    m_console.reset(); // its stop request uses the members below
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
    const std::string path = Platform::OwnProgramPath();
    if (path.empty()) {
        return "Failed to get module file name";
    }
    return PlatformHelpers::GetModuleVersion(path, version, changelist);
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
        return; // another thread logged while the application ended
    }
    try {
        const std::string lines = WithLineEndings({data, length});
        s_this->PassOn(logName, lines.c_str(), static_cast<uint32_t>(lines.size()));
    } catch (const std::bad_alloc&) {
        s_this->PassOn(logName, data, length); // better a line without an end than none
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
