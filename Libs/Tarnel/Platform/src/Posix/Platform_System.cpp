#include <bit>
#include <cstdlib>
#include <ctime>
#include <new>

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

namespace Platform {
namespace {

static_assert(sizeof(pthread_mutex_t) <= sizeof(AssertLock) &&
              alignof(pthread_mutex_t) <= alignof(AssertLock));

pthread_mutex_t* MutexOf(AssertLock& lock) {
    return std::launder(reinterpret_cast<pthread_mutex_t*>(lock.storage));
}

} // namespace

std::unique_ptr<Receipt> UseUtf8Console() {
    return nullptr; // every terminal shows UTF-8
}

bool IsErrorTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

void AssertSystem::InitializeLock(AssertLock& lock) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(new (lock.storage) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

void AssertSystem::EnterLock(AssertLock& lock) {
    pthread_mutex_lock(MutexOf(lock));
}

void AssertSystem::LeaveLock(AssertLock& lock) {
    pthread_mutex_unlock(MutexOf(lock));
}

// A debugger is recognised on Windows alone; it changes only how data errors are worded.
bool AssertSystem::IsDebuggerAttached() {
    return false;
}

void AssertSystem::SendToDebugger(const char*) {}

AssertDialog AssertSystem::BuiltInDialog() {
    return nullptr;
}

void AssertSystem::EndProcess(int exitCode) {
    std::_Exit(exitCode);
}

void* GeneralAllocate(std::size_t size, std::size_t alignment) {
    const std::size_t rounded = RoundUpToGranularity(size);
    const std::size_t atLeast = alignment < MemoryGranularity ? MemoryGranularity : alignment;
    void* pBlock = nullptr;
    if (rounded >= size && std::has_single_bit(atLeast) &&
        posix_memalign(&pBlock, atLeast, rounded ? rounded : MemoryGranularity) != 0) {
        pBlock = nullptr;
    }
    PLATFORM_ASSERT(pBlock);
    return pBlock;
}

void GeneralFree(void* block) {
    std::free(block);
}

LocalTime CurrentLocalTime() {
    const std::time_t now = std::time(nullptr);
    std::tm broken = {};
    if (!localtime_r(&now, &broken)) {
        return {};
    }
    return {broken.tm_year + 1900, broken.tm_mon + 1, broken.tm_mday,
            broken.tm_hour,        broken.tm_min,     broken.tm_sec};
}

} // namespace Platform

uint32_t GetCurrentThreadIdImpl() {
    return static_cast<uint32_t>(syscall(SYS_gettid));
}
