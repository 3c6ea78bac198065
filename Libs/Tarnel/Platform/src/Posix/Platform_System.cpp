#include <cstdlib>
#include <ctime>
#include <new>

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

namespace Platform {
namespace {

static_assert(sizeof(pthread_mutex_t) <= sizeof(AssertLock) &&
              alignof(pthread_mutex_t) <= alignof(AssertLock));

pthread_mutex_t* MutexOf(AssertLock& lock) {
    return std::launder(reinterpret_cast<pthread_mutex_t*>(lock.storage));
}

} // namespace

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
