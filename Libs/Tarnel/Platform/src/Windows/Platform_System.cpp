#include <cstdlib>
#include <ctime>
#include <new>

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

namespace Platform {
namespace {

static_assert(sizeof(CRITICAL_SECTION) <= sizeof(AssertLock));
static_assert(alignof(CRITICAL_SECTION) <= alignof(AssertLock));

CRITICAL_SECTION* SectionOf(AssertLock& lock) {
    return std::launder(reinterpret_cast<CRITICAL_SECTION*>(lock.storage));
}

} // namespace

void AssertSystem::InitializeLock(AssertLock& lock) {
    InitializeCriticalSection(new (lock.storage) CRITICAL_SECTION);
}

void AssertSystem::EnterLock(AssertLock& lock) {
    EnterCriticalSection(SectionOf(lock));
}

void AssertSystem::LeaveLock(AssertLock& lock) {
    LeaveCriticalSection(SectionOf(lock));
}

bool AssertSystem::IsDebuggerAttached() {
    return IsDebuggerPresent() != 0;
}

void AssertSystem::SendToDebugger(const char* text) {
    OutputDebugStringA(text);
}

void AssertSystem::EndProcess(int exitCode) {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode));
    std::_Exit(exitCode); // not reached: the call above does not come back for the own process
}

LocalTime CurrentLocalTime() {
    const __time64_t now = _time64(nullptr);
    std::tm broken = {};
    if (_localtime64_s(&broken, &now) != 0) {
        return {};
    }
    return {broken.tm_year + 1900, broken.tm_mon + 1, broken.tm_mday,
            broken.tm_hour,        broken.tm_min,     broken.tm_sec};
}

} // namespace Platform

uint32_t GetCurrentThreadIdImpl() {
    return GetCurrentThreadId();
}
