#include "Libs/Framework/Core/src/Thread.h"

#include <windows.h>

#include <exception>
#include <utility>

#include "Libs/Framework/Core/src/ThreadExitCode.h"
#include "Libs/Framework/Core/src/ThreadName.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

constexpr DWORD Refused = static_cast<DWORD>(-1); // what ResumeThread and SuspendThread answer on failure

} // namespace

// What the thread works from. It outlives the Thread when the thread does. The flags are written only while
// the thread is suspended before its first step.
struct Thread::Entry {
    explicit Entry(std::function<void()> function) : m_function(std::move(function)) {}

    std::function<void()> m_function;
    bool m_cancelled = false;
    bool m_background = false;

    uint32_t Call() noexcept {
        try {
            m_function();
            return ThreadExitCode::FunctionReturned;
        } catch (const std::exception& error) {
            PLATFORM_LOG(Platform::ErrorLog, " Thread ended by an exception: %s", error.what());
        } catch (...) {
            PLATFORM_LOG(Platform::ErrorLog, " Thread ended by an exception: %s", "of unknown type");
        }
        return ThreadExitCode::ExceptionEscaped;
    }

    static DWORD WINAPI Main(void* parameter) {
        const std::unique_ptr<std::shared_ptr<Entry>> entry(static_cast<std::shared_ptr<Entry>*>(parameter));
        if ((*entry)->m_cancelled) {
            return ThreadExitCode::NeverStarted;
        }
        if ((*entry)->m_background) {
            SetThreadPriority(GetCurrentThread(), THREAD_MODE_BACKGROUND_BEGIN);
        }
        return (*entry)->Call();
    }
};

class Thread::BackgroundModeReceipt final : public Platform::Receipt {
public:
    explicit BackgroundModeReceipt(std::shared_ptr<Thread> thread) : m_thread(std::move(thread)) {}
    ~BackgroundModeReceipt() override {
        SetThreadPriority(m_thread->GetHandle(), THREAD_MODE_BACKGROUND_END);
    }

private:
    std::shared_ptr<Thread> m_thread;
};

Thread::Thread(std::function<void()> function)
    : m_entry(std::make_shared<Entry>(std::move(function))), m_handle(INVALID_HANDLE_VALUE) {
    auto shared = std::make_unique<std::shared_ptr<Entry>>(m_entry);
    DWORD id = m_id;
    m_handle = CreateThread(nullptr, 0, &Entry::Main, shared.get(), CREATE_SUSPENDED, &id);
    if (IsValid()) {
        m_id = id;
        static_cast<void>(shared.release()); // the thread's now
    }
}

Thread::~Thread() {
    if (!IsValid()) {
        return;
    }
    if (!m_started) {
        m_entry->m_cancelled = true;
        for (DWORD before = 2; before > 1 && before != Refused;) {
            before = ResumeThread(m_handle);
        }
    }
    CloseHandle(m_handle);
}

bool Thread::IsValid() const {
    return m_handle && m_handle != INVALID_HANDLE_VALUE;
}

ResultCode Thread::SetName(const char* name) {
    if (!IsValid()) {
        return "Thread not valid";
    }
    return NameThread(m_handle, name);
}

ResultCode Thread::Resume() {
    if (!IsValid()) {
        return "Thread not valid";
    }
    const DWORD before = ResumeThread(m_handle);
    if (before == Refused) {
        return "Failed to resume thread";
    }
    m_suspensions = before > 0 ? before - 1 : 0;
    m_started = m_started || m_suspensions == 0;
    return Platform::Success;
}

ResultCode Thread::Suspend() {
    if (!IsValid()) {
        return "Thread not valid";
    }
    const DWORD before = SuspendThread(m_handle);
    if (before == Refused) {
        return "Failed to suspend thread";
    }
    m_suspensions = before + 1;
    return Platform::Success;
}

Thread::Status Thread::GetStatus() const {
    DWORD exitCode = 0;
    if (!IsValid() || !GetExitCodeThread(m_handle, &exitCode)) {
        return Status::Failed;
    }
    return StatusOfExitCode(exitCode);
}

void Thread::Join() const {
    if (GetStatus() == Status::Running) {
        WaitForSingleObject(m_handle, INFINITE);
    }
}

void Thread::Finish() {
    if (!m_started) {
        return;
    }
    while (m_suspensions > 0 && GetStatus() == Status::Running && Resume()) {
    }
    Join();
}

std::shared_ptr<Platform::Receipt> Thread::EnterBackgroundMode() {
    if (!m_started) {
        m_entry->m_background = true;
    } else {
        SetThreadPriority(m_handle, THREAD_MODE_BACKGROUND_BEGIN);
    }
    return std::make_shared<BackgroundModeReceipt>(shared_from_this());
}
