#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "Libs/Tarnel/Platform/src/Common/Platform_Receipt.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// One operating-system thread around a callable: created suspended, started by Resume, joined through its
// handle. Always owned by a std::shared_ptr. Creation, Resume, Suspend, SetName, Finish and
// EnterBackgroundMode belong to the thread that owns it; GetStatus and Join may be called from any thread. No
// exception leaves the thread: one that escapes the callable is logged and ends it with exit code 1.
// Destroying a Thread that was never resumed lets it end without calling the function; destroying one that
// runs does not wait for it.
class Thread : public std::enable_shared_from_this<Thread> {
public:
    enum class Status : int {
        Ended = 0,         // with an exit code of its own
        Running = 1,       // also before the first Resume
        EndedNormally = 2, // the function returned
        Failed = 3,        // no thread, or an exit code that stands for a crash
    };

    // Keeps a thread in background scheduling mode as long as the receipt lives; keeps the Thread alive too.
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

    // Lets a thread that was started run to its end, also out of a suspension, and waits for it. Returns at
    // once for one that never was.
    void Finish();

    void* GetHandle() const { return m_handle; }
    uint32_t GetThreadId() const { return m_id; }

    // The receipt is given out also when the system refuses the mode. Windows takes a thread's background
    // mode from that thread alone: asked for before the first Resume, it is taken up when the thread starts.
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
