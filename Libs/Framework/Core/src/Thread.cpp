#include "Libs/Framework/Core/src/Thread.h"

#include <windows.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

constexpr DWORD Refused = static_cast<DWORD>(-1); // what ResumeThread and SuspendThread return on failure

// Exit codes of our threads.
constexpr DWORD FunctionReturned = 100;
constexpr DWORD ExceptionEscaped = 1;
constexpr DWORD NeverStarted = 2;

struct CodeRange {
    uint32_t first;
    uint32_t last;
};

// The system's exceptions that end a thread if nothing handles them.
constexpr CodeRange CrashCodes[] = {
    {0x80000001, 0x80000004}, // guard page, misalignment, breakpoint, single step
    {0xC0000005, 0xC0000006}, // access violation, page that can't be read
    {0xC0000008, 0xC0000008}, // invalid handle
    {0xC000001D, 0xC000001D}, // illegal instruction
    {0xC0000025, 0xC0000026}, // non-continuable, invalid disposition
    {0xC000008C, 0xC0000096}, // array bounds, arithmetic, privileged instruction
    {0xC00000FD, 0xC00000FD}, // stack overflow
    {0xC000013A, 0xC000013A}, // Ctrl+C
};

constexpr DWORD NamingException = 0x406D1388;

LONG CALLBACK IgnoreNamingException(EXCEPTION_POINTERS* exception) {
    return exception->ExceptionRecord->ExceptionCode == NamingException ? EXCEPTION_CONTINUE_EXECUTION
                                                                        : EXCEPTION_CONTINUE_SEARCH;
}

// An attached debugger reads the record before the handler takes the exception. A vectored handler, because
// GCC has no frame-based ones; without a handler in force the exception would end the program.
void TellDebugger(const char* name, DWORD threadId) {
    constexpr ULONG_PTR NamingRecord = 0x1000;
    if (void* handler = AddVectoredExceptionHandler(1, &IgnoreNamingException)) {
        // Type, name, thread and flags; the last two share a word.
        const ULONG_PTR words[3] = {NamingRecord, reinterpret_cast<ULONG_PTR>(name), threadId};
        RaiseException(NamingException, 0, 3, words);
        RemoveVectoredExceptionHandler(handler);
    }
}

} // namespace

// What the thread needs while it runs, even after its Thread is gone. The flags are written only while the
// thread is suspended before its first step.
struct Thread::Entry {
    explicit Entry(std::function<void()> function) : m_function(std::move(function)) {}

    std::function<void()> m_function;
    bool m_cancelled = false;
    bool m_background = false;

    uint32_t Call() noexcept {
        try {
            m_function();
            return FunctionReturned;
        } catch (const std::exception& error) {
            PLATFORM_LOG(Platform::ErrorLog, " Thread ended by an exception: %s", error.what());
        } catch (...) {
            PLATFORM_LOG(Platform::ErrorLog, " Thread ended by an exception: %s", "of unknown type");
        }
        return ExceptionEscaped;
    }

    static DWORD WINAPI Main(void* parameter) {
        const std::unique_ptr<std::shared_ptr<Entry>> entry(static_cast<std::shared_ptr<Entry>*>(parameter));
        if ((*entry)->m_cancelled) {
            return NeverStarted;
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
        static_cast<void>(shared.release()); // the thread owns it now
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
    const DWORD id = ::GetThreadId(m_handle);
    if (id == 0) {
        return "Failed to get thread id";
    }
    TellDebugger(name, id);
    return Platform::Success;
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

Thread::Status Thread::StatusOfExitCode(uint32_t exitCode) {
    if (exitCode == STILL_ACTIVE) {
        return Status::Running;
    }
    if (exitCode == FunctionReturned) {
        return Status::EndedNormally;
    }
    const bool crashed = std::ranges::any_of(CrashCodes, [exitCode](const CodeRange& range) {
        return range.first <= exitCode && exitCode <= range.last;
    });
    return crashed ? Status::Failed : Status::Ended;
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

ResultCode WaitForThreads(const std::vector<void*>& handles) {
    // One wait takes no more handles than this. All have to end, so the groups may be waited for in turn.
    constexpr std::size_t GroupSize = MAXIMUM_WAIT_OBJECTS;
    for (std::size_t first = 0; first < handles.size(); first += GroupSize) {
        const auto count = static_cast<DWORD>(std::min(GroupSize, handles.size() - first));
        if (WaitForMultipleObjects(count, handles.data() + first, TRUE, INFINITE) == WAIT_FAILED) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to wait for threads. Error Code=0x%08X",
                         static_cast<unsigned>(GetLastError()));
            return "Failed to wait for threads";
        }
    }
    return Platform::Success;
}
