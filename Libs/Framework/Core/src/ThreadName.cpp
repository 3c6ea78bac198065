#include "Libs/Framework/Core/src/ThreadName.h"

#include <windows.h>

#include <new>
#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

namespace {

constexpr DWORD NamingException = 0x406D1388;

// The record that debuggers look for behind the exception, three machine words.
#pragma pack(push, 8)
struct NamingRecord {
    DWORD type = 0x1000;
    const char* name = nullptr;
    DWORD threadId = 0;
    DWORD flags = 0;
};
#pragma pack(pop)
static_assert(sizeof(NamingRecord) == 3 * sizeof(ULONG_PTR));

LONG CALLBACK IgnoreNamingException(EXCEPTION_POINTERS* exception) {
    return exception->ExceptionRecord->ExceptionCode == NamingException ? EXCEPTION_CONTINUE_EXECUTION
                                                                        : EXCEPTION_CONTINUE_SEARCH;
}

// An attached debugger reads the record before the handler takes the exception. A vectored handler, because
// GCC has no frame-based ones; without a handler in force the exception would end the program.
void RaiseNamingException(const char* name, DWORD threadId) {
    void* handler = AddVectoredExceptionHandler(1, &IgnoreNamingException);
    if (!handler) {
        return;
    }
    NamingRecord record;
    record.name = name;
    record.threadId = threadId;
    ULONG_PTR words[3];
    static_assert(sizeof(words) == sizeof(record));
    CopyMemory(words, &record, sizeof(words));
    RaiseException(NamingException, 0, 3, words);
    RemoveVectoredExceptionHandler(handler);
}

// Since Windows 10 a thread carries its name itself, where later debuggers and dumps find it.
void DescribeThread(HANDLE thread, const char* name) {
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const auto setDescription = reinterpret_cast<SetDescription>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription"));
    std::wstring wide;
    if (setDescription &&
        Platform::ConvertString(std::string_view(name), wide) == Platform::ConvertString_Done) {
        setDescription(thread, wide.c_str());
    }
}

} // namespace

ResultCode NameThread(void* threadHandle, const char* name) {
    const DWORD id = GetThreadId(threadHandle);
    if (id == 0) {
        return "Failed to get thread id";
    }
    RaiseNamingException(name, id);
    DescribeThread(threadHandle, name);
    return Platform::Success;
}
