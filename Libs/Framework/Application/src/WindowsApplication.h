#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "Libs/Framework/Application/src/ConsoleWindow.h"
#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/Reflected.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

// The built-in process "MessagePump": handles the window messages of its thread. Owned by WindowsApplication,
// which adds it itself; no configuration names it.
class WindowsApplicationPump : public Reflected<WindowsApplicationPump> {
public:
    using Reflected::Reflected;

    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;

    // The module with the program's resources. Constant after Initialize.
    void* GetInstance() const { return m_instance; }

private:
    void* m_instance = nullptr; // the program's module
    void* m_window = nullptr;   // ends with the process
};
Reflection_DeclarePolymorphicType(WindowsApplicationPump);

// The application as a Windows program: with a message pump, a console window if the command line asks for
// one, and log entries that come out as whole lines, also in an attached debugger. There is one at a time,
// made, used and destroyed by the main thread; log entries pass through it from any thread.
class WindowsApplication : public ApplicationBase {
public:
    WindowsApplication(int argc, const char** argv);
    ~WindowsApplication() override;

    ResultCode Initialize(int argc, const char** argv) override;
    ResultCode Run() override;
    ResultCode AskUploadPermission(UploadPermission& answer) override;
    ResultCode GetVersion(PlatformHelpers::ModuleVersion& version, uint32_t& changelist) override;

private:
    static void OnLogEvent(const wchar_t* logName, const char* data, uint32_t length, int);
    void PassOn(const wchar_t* logName, const char* data, uint32_t length);
    void RequestShutdownFromConsole();

    static WindowsApplication* s_this;     // guarded by s_logLock for log entries
    static std::recursive_mutex s_logLock; // recursive: the previous callback may log itself

    std::unique_ptr<ConsoleWindow> m_console;
    Platform::LogEventCallback m_previousCallback = nullptr;
    std::shared_ptr<WindowsApplicationPump> m_messagePumpProc;

    // A stop that the console asks for before Run waits for it: processes are still being made.
    std::mutex m_stopLock;
    bool m_running = false;       // guarded by m_stopLock
    bool m_stopRequested = false; // guarded by m_stopLock
};
