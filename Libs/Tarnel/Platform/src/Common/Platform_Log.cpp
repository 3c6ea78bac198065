#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

#include <atomic>
#include <mutex>
#include <new>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_LogRoot.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_OpenFile.h"
#include "Libs/Tarnel/Types/src/Types_FNV1a.h"

namespace Platform {
namespace {

constexpr int MaxLogFiles = 32;

// One log's open file. Slots are filled in order, under g_logLock, and never emptied; the files stay open
// until the process ends.
struct LogSlot {
    std::atomic<uint32_t> nameKey =
        0; // 0 while the slot is free; set last, so that its readers see an open file
    File file;
    std::atomic<uint64_t> nextOffset = 0;
};

constinit SpinLock g_logLock; // guards g_callback, g_slotCount and the filling of slots
constinit LogEventCallback g_callback = &LogFileSink;
constinit std::atomic<bool> g_isLoggingEnabled = true;
constinit LogSlot g_slots[MaxLogFiles];
constinit int g_slotCount = 0;

uint32_t KeyOf(const wchar_t* logName) {
    const uint32_t key = Types::FNV1aWide(logName);
    return key != 0 ? key : 1; // 0 is the free slot
}

LogSlot* FindSlot(uint32_t key) {
    for (LogSlot& slot : g_slots) {
        if (slot.nameKey.load(std::memory_order_acquire) == key) {
            return &slot;
        }
    }
    return nullptr;
}

OpenOutcome OpenLogFile(const wchar_t* logName, File& file) {
    try {
        file = File{};
        file.accessFlags = FileWrite | FileCreateAndTruncate;
        return TryOpenFile(file, LogPath(logName).c_str());
    } catch (const std::bad_alloc&) {
        return OpenOutcome::Refused;
    }
}

struct NewSlot {
    LogSlot* slot = nullptr;
    OpenOutcome outcome = OpenOutcome::Done;
    bool isTableFull = false;
};

NewSlot FillSlot(const wchar_t* logName, uint32_t key) {
    const std::lock_guard guard(g_logLock);
    if (LogSlot* const slot = FindSlot(key)) { // another thread was quicker
        return {slot};
    }
    if (g_slotCount >= MaxLogFiles) {
        return {nullptr, OpenOutcome::Refused, true};
    }
    LogSlot& slot = g_slots[g_slotCount];
    const OpenOutcome outcome = OpenLogFile(logName, slot.file);
    if (outcome != OpenOutcome::Done) {
        return {nullptr, outcome};
    }
    ++g_slotCount;
    slot.nameKey.store(key, std::memory_order_release);
    return {&slot};
}

// Checks are reported after the lock has gone: an assertion handler may log.
LogSlot* OpenSlot(const wchar_t* logName, uint32_t key) {
    const NewSlot result = FillSlot(logName, key);
    if (result.isTableFull) {
        PLATFORM_ASSERT_MESSAGE(false, "Exceeded maximum log file count of %d", MaxLogFiles);
    } else {
        ReportOpenOutcome(result.outcome);
    }
    return result.slot;
}

// Writers reserve disjoint ranges first and then write without a lock.
void WriteToSlot(LogSlot& slot, const char* data, uint32_t length) {
    File file = slot.file;
    const uint64_t offset = slot.nextOffset.fetch_add(length);
    static_cast<void>(WriteFileAt(file, offset, data, length)); // an entry that can't be written is lost
}

} // namespace

void LogWrite(const wchar_t* logName, const char* data, uint32_t length) {
    EXP_GetLogEventCallback()(logName, data, length, 1);
}

void LogFileSink(const wchar_t* logName, const char* data, uint32_t length, int) {
    if (!logName || !g_isLoggingEnabled) {
        return;
    }
    const uint32_t key = KeyOf(logName);
    LogSlot* slot = FindSlot(key);
    if (!slot) {
        slot = OpenSlot(logName, key);
    }
    if (slot) {
        WriteToSlot(*slot, data, length);
    }
}

} // namespace Platform

void EXP_SetLogEventCallback(Platform::LogEventCallback callback) {
    const std::lock_guard guard(Platform::g_logLock);
    Platform::g_callback = callback ? callback : &Platform::LogFileSink;
}

Platform::LogEventCallback EXP_GetLogEventCallback() {
    const std::lock_guard guard(Platform::g_logLock);
    return Platform::g_callback;
}
