#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "Libs/Tarnel/Platform/src/Common/Platform_Receipt.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// One operating-system thread around a callable: created suspended, started by Resume, joined through its handle.
// Always owned by a std::shared_ptr. Creation, Resume, Suspend, SetName and EnterBackgroundMode belong to the
// thread that owns it; GetStatus and Join may be called from any thread. No exception leaves the thread: one that
// escapes the callable is logged and ends it with exit code 1. Destroying a Thread that was never resumed lets it
// end without calling the function; destroying one that runs does not wait for it.
class Thread : public std::enable_shared_from_this<Thread> {
public:
    enum class Status : int {
        Ended = 0,         // with an exit code of its own
        Running = 1,       // also before the first Resume
        EndedNormally = 2, // the function returned
        Failed = 3,        // no thread, or ended by an exception
    };

    // Keeps a thread in background scheduling mode as long as the receipt lives; keeps the Thread alive too.
    class BackgroundModeReceipt;

    explicit Thread(std::function<void()> function);
    ~Thread();
    Thread(const Thread&) = delete; // the running thread holds the object's address
    Thread& operator=(const Thread&) = delete;

    // For debuggers only.
    ResultCode SetName(const char* name);
    ResultCode Resume();
    ResultCode Suspend();
    Status GetStatus() const;

    // Waits without limit while the status is Running: resume first.
    void Join() const;

    void* GetHandle() const { return m_handle; }
    uint32_t GetThreadId() const { return m_id; }

    // The receipt is given out also when the system refuses the priority.
    std::shared_ptr<Platform::Receipt> EnterBackgroundMode();

    // What an exit code says about the end of a thread.
    static Status StatusOfExitCode(uint32_t exitCode);

private:
    struct Entry;

    std::function<void()> m_function;
    void* m_handle;
    uint32_t m_id = 0xFFFFFFFF;
};
