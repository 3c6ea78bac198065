#include "Libs/Framework/Core/src/ApplicationProcessBase.h"

ApplicationProcessBase::ApplicationProcessBase(ApplicationBase* application, const char* name)
    : m_application(application), m_thread(std::make_shared<Thread>([this] { ThreadMain(); })),
      m_name(name ? name : "") {
    // The name serves debuggers only; a thread that could not be made is reported by Start.
    static_cast<void>(m_thread->SetName(m_name.c_str()));
}

ApplicationProcessBase::~ApplicationProcessBase() = default;

void* ApplicationProcessBase::QueryObj(const Reflection::TypeDescriptor&) {
    return nullptr;
}

void ApplicationProcessBase::RequestShutdown() {
    m_stop.exchange(true, std::memory_order_acq_rel);
}

ResultCode ApplicationProcessBase::Start() {
    // Before the thread runs, since it is the thread itself that takes the mode up.
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
