#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

// One operating-system thread around a callable: created suspended, started by Resume. Always owned by a
// std::shared_ptr. GetStatus and Join may be called from any thread, the rest only from the thread that owns
// it. No exception leaves the thread: one that escapes the callable is logged and ends it with exit code 1.
// Destroying a Thread that was never resumed ends it without a call of the function; destroying one that runs
// does not wait for it.
class Thread : public std::enable_shared_from_this<Thread> {
public:
    enum class Status : int {
        Ended = 0,         // with an exit code of its own
        Running = 1,       // also before the first Resume
        EndedNormally = 2, // the function returned
        Failed = 3,        // no thread, or the exit code of a crash
    };

    // Keeps a thread in background scheduling mode, and its Thread alive, as long as the receipt lives.
    class BackgroundModeReceipt;

    explicit Thread(std::function<void()> function);
    ~Thread();
    Thread(const Thread&) = delete; // it owns the system's thread
    Thread& operator=(const Thread&) = delete;

    // For debuggers only.
    ResultCode SetName(const char* name);
    ResultCode Resume();
    ResultCode Suspend();
    Status GetStatus() const;

    // Waits without limit while the status is Running: resume first.
    void Join() const;

    // Waits for the end of a thread that was started, and resumes it if it is suspended. Returns at once if
    // it never was started.
    void Finish();

    void* GetHandle() const { return m_handle; }
    uint32_t GetThreadId() const { return m_id; }

    // Call it before the first Resume: Windows grants background mode only to the thread itself, which takes
    // it up before it calls the function. Returns a receipt even if the system refuses the mode.
    std::shared_ptr<Platform::Receipt> EnterBackgroundMode();

    // What an exit code says about the end of a thread.
    static Status StatusOfExitCode(uint32_t exitCode);

private:
    struct Entry;
    bool IsValid() const;

    std::shared_ptr<Entry> m_entry; // the thread holds it too
    void* m_handle;
    uint32_t m_id = 0xFFFFFFFF;
    bool m_started = false;
    uint32_t m_suspensions = 1; // the thread runs at 0
};

// Waits without limit until every thread has ended. handles are those of Thread::GetHandle.
ResultCode WaitForThreads(const std::vector<void*>& handles);
