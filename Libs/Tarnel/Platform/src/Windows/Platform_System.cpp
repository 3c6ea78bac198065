#include <bit>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <new>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <malloc.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

namespace Platform {
namespace {

static_assert(sizeof(CRITICAL_SECTION) <= sizeof(AssertLock));
static_assert(alignof(CRITICAL_SECTION) <= alignof(AssertLock));

CRITICAL_SECTION* SectionOf(AssertLock& lock) {
    return std::launder(reinterpret_cast<CRITICAL_SECTION*>(lock.storage));
}

UINT g_ownCodePage = 0; // the console's; 0 without a console

BOOL WINAPI RestoreCodePage(DWORD) {
    if (g_ownCodePage != 0) {
        SetConsoleOutputCP(g_ownCodePage);
    }
    return FALSE; // after Ctrl+C the system then ends the program
}

struct Utf8Console final : Receipt {
    Utf8Console() {
        for (std::FILE* const stream : {stdin, stdout, stderr}) {
            static_cast<void>(_setmode(_fileno(stream), _O_BINARY));
        }
        g_ownCodePage = GetConsoleOutputCP();
        SetConsoleCtrlHandler(&RestoreCodePage, TRUE);
        SetConsoleOutputCP(CP_UTF8);
    }
    ~Utf8Console() override { RestoreCodePage(0); }
};

} // namespace

std::unique_ptr<Receipt> UseUtf8Console() {
    return std::make_unique<Utf8Console>();
}

bool IsErrorTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

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

void* GeneralAllocate(std::size_t size, std::size_t alignment) {
    const std::size_t rounded = RoundUpToGranularity(size);
    const std::size_t atLeast = alignment < MemoryGranularity ? MemoryGranularity : alignment;
    void* pBlock = nullptr;
    if (rounded >= size && std::has_single_bit(atLeast)) {
        pBlock = _aligned_malloc(rounded, atLeast);
    }
    PLATFORM_ASSERT(pBlock);
    return pBlock;
}

void GeneralFree(void* block) {
    _aligned_free(block);
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
