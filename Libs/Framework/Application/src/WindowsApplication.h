#pragma once

#include <memory>
#include <mutex>

#include "Libs/Framework/Application/src/ConsoleWindow.h"
#include "Libs/Framework/Application/src/WindowsApplicationPump.h"
#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

// The application as a Windows program: with a message pump, a console window when the command line asks for
// one, and log entries that come out as whole lines, also in an attached debugger. There is one at a time,
// made, used and destroyed by the main thread; log entries pass through it from any thread.
class WindowsApplication : public ApplicationBase {
public:
    WindowsApplication(int argc, const char** argv);
    ~WindowsApplication() override;

    ResultCode Initialize(int argc, const char** argv) override;
    ResultCode Run() override;
    ResultCode Shutdown() override;
    ResultCode AskUploadPermission(UploadPermission& answer) override;
    ResultCode GetVersion(PlatformHelpers::ModuleVersion& version, uint32_t& changelist) override;

private:
    static void OnLogEvent(const wchar_t* logName, const char* data, uint32_t length, int);
    void PassOn(const wchar_t* logName, const char* data, uint32_t length);
    void RequestShutdownFromConsole();

    static WindowsApplication* s_this;     // a log entry reads it under s_logLock
    static std::recursive_mutex s_logLock; // recursive: a sink behind this one may log itself

    std::unique_ptr<ConsoleWindow> m_console;
    Platform::LogEventCallback m_previousCallback = nullptr;
    std::shared_ptr<WindowsApplicationPump> m_messagePumpProc;

    // Who closes the console before Run finds processes that are still being made.
    std::mutex m_stopLock;
    bool m_running = false;       // guarded by m_stopLock
    bool m_stopRequested = false; // guarded by m_stopLock
};
