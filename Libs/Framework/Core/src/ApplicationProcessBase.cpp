#include "Libs/Framework/Core/src/ApplicationProcessBase.h"

#include <windows.h>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

ApplicationProcessBase::ApplicationProcessBase(ApplicationBase* application, const char* name)
    : m_application(application), m_thread(std::make_shared<Thread>([this] { ThreadMain(); })),
      m_stopped(CreateEventW(nullptr, TRUE, FALSE, nullptr)), m_name(name ? name : "") {
    // The name serves debuggers only; a thread that could not be made is reported by Start.
    static_cast<void>(m_thread->SetName(m_name.c_str()));
}

ApplicationProcessBase::~ApplicationProcessBase() = default;

void* ApplicationProcessBase::QueryObj(const Reflection::TypeDescriptor&) {
    return nullptr;
}

std::string ApplicationProcessBase::GetApplicationFolder() const {
    const ApplicationBase* const application = GetApplication();
    return application ? application->GetApplicationFolder() : std::string();
}

std::shared_ptr<IApplicationProcess> ApplicationProcessBase::FindProcess(const std::string& name) const {
    const ApplicationBase* const application = GetApplication();
    return application ? application->GetProcess(name) : nullptr;
}

void ApplicationProcessBase::RequestShutdown() {
    m_stop.exchange(true, std::memory_order_acq_rel);
    SetEvent(m_stopped.Get());
}

bool ApplicationProcessBase::Pause(uint32_t milliseconds) const {
    WaitForSingleObject(m_stopped.Get(), milliseconds);
    return !IsStopRequested();
}

bool ApplicationProcessBase::RunRounds(uint32_t pauseMilliseconds, const std::function<void()>& round) const {
    while (Pause(pauseMilliseconds)) {
        const ResultCode result = ExceptionToResult([&]() -> ResultCode {
            round();
            return Platform::Success;
        });
        if (!result) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed a round of process %s. Error=%s", GetName(),
                         result.Text());
        }
    }
    return IsStopRequested();
}

void ApplicationProcessBase::RequestApplicationShutdown() const {
    if (ApplicationBase* application = GetApplication()) {
        application->RequestShutdown();
    }
}

ResultCode ApplicationProcessBase::Start() {
    if (!m_stopped) {
        return "Failed to create the stop event";
    }
    // Before the thread runs: the system lets no other thread ask for the mode.
    m_backgroundMode = m_thread->EnterBackgroundMode();
    const ResultCode result = m_thread->Resume();
    if (!result) {
        m_backgroundMode.reset();
    }
    return result;
}

ResultCode ApplicationProcessBase::Shutdown() {
    if (m_thread->GetStatus() == Thread::Status::Running) {
        return m_thread->Suspend();
    }
    return Platform::Success;
}
