// Stands between an executable and the system, by the executable's import table. It lies beside it under the
// name of a library that it imports, Normaliz.dll, and leads that one's functions on to the system's. It
// refuses paths without the prefix \\?\, of which Windows, but not Wine, refuses some and reads others
// differently: long ones, names of devices. It counts the calls of each class, and lets some of them fail.
// Counting begins when the program's entry calls SetErrorMode, after the start of the C runtime.
//
//   STRICT_REPORT  file that gets a line for each of the first calls that failed, with the callers' addresses
//                  relative to the executable, and at the end a line "CLASS CALLS" for each class
//   STRICT_FAULT   "CLASS FIRST LAST ERROR": calls FIRST to LAST of the class fail with that Windows error
//   STRICT_ANSWER  what a dialog returns instead of being shown
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

#include <windows.h>

#include <bcrypt.h>
#include <process.h>
#include <psapi.h>
#include <winhttp.h>

namespace {

// The calls of the first six take paths.
constexpr std::string_view Classes[] = {"open",   "attributes", "delete",  "list",     "rename", "folder",
                                        "read",   "write",      "flush",   "allocate", "thread", "winhttp",
                                        "bcrypt", "processes",  "console", "dialog"};

consteval int ClassOf(std::string_view name) {
    return static_cast<int>(std::ranges::find(Classes, name) - std::begin(Classes));
}

struct Fault {
    char kind[16] = "";
    long first = 0;
    long last = 0;
    unsigned long error = 0;
};

Fault g_fault;
char g_report[4096] = "";
int g_answer = 0;
bool g_counting = false;
volatile LONG g_calls[std::size(Classes)];
volatile LONG g_reported;

void Report(const std::string& line) {
    if (FILE* const file = g_report[0] ? std::fopen(g_report, "a") : nullptr) {
        std::fputs((line + "\n").c_str(), file);
        std::fclose(file);
    }
}

void ReportFailure(const char* function) {
    if (InterlockedIncrement(&g_reported) > 3) {
        return;
    }
    void* frames[16] = {};
    CaptureStackBackTrace(2, static_cast<DWORD>(std::size(frames)), frames, nullptr);
    std::string line = std::string("failed ") + function;
    for (const void* frame : frames) {
        char text[24];
        const auto image = reinterpret_cast<ULONG_PTR>(GetModuleHandleW(nullptr));
        std::snprintf(text, sizeof(text), " %llx", reinterpret_cast<ULONG_PTR>(frame) - image);
        line += frame ? text : "";
    }
    Report(line);
}

bool IsToFail(int kind, const char* function) {
    if (!g_counting) {
        return false;
    }
    const LONG call = InterlockedIncrement(&g_calls[kind]);
    if (Classes[kind] != g_fault.kind || call < g_fault.first || call > g_fault.last) {
        return false;
    }
    ReportFailure(function);
    SetLastError(g_fault.error);
    return true;
}

template <class Argument>
bool IsRefused([[maybe_unused]] int kind, [[maybe_unused]] Argument argument) {
    if constexpr (std::is_same_v<Argument, LPCWSTR>) {
        const std::wstring_view path = kind <= ClassOf("folder") && argument ? argument : L"CONOUT$";
        if (!path.starts_with(L"\\\\?\\") && !path.starts_with(L"CON")) {
            Report("refused a path without its prefix");
            SetLastError(ERROR_INVALID_NAME);
            return true;
        }
    }
    return false;
}

struct Patch {
    const char* name;
    void* hook;
    void** real;
};

// Stands for one function; Tag makes it one of its own. failed is what the function returns after a failure.
template <class Tag, int kind, INT_PTR failed, class Signature>
struct Hook;

template <class Tag, int kind, INT_PTR failed, class R, class... Arguments>
struct Hook<Tag, kind, failed, R(Arguments...)> {
    static inline R (*s_real)(Arguments...) = nullptr;
    static inline const char* s_name = nullptr;

    static R Call(Arguments... arguments) {
        if (IsToFail(KindOf(arguments...), s_name) || (IsRefused(kind, arguments) || ...)) {
            if constexpr (std::is_pointer_v<R>) {
                return reinterpret_cast<R>(failed);
            } else {
                return static_cast<R>(failed);
            }
        }
        if constexpr (kind == ClassOf("dialog")) {
            if (g_answer != 0) {
                return g_answer;
            }
        }
        return s_real(arguments...);
    }

    // The log goes to a pipe or a console.
    static int KindOf([[maybe_unused]] Arguments... arguments) {
        if constexpr (kind == ClassOf("write")) {
            const HANDLE file = [](HANDLE first, auto...) { return first; }(arguments...);
            return GetFileType(file) == FILE_TYPE_DISK ? kind : ClassOf("console");
        } else {
            return kind;
        }
    }

    static Patch Row(const char* name) {
        s_name = name;
        return {name, reinterpret_cast<void*>(&Call), reinterpret_cast<void**>(&s_real)};
    }
};

UINT (*g_setErrorMode)(UINT) = nullptr;

UINT BeginCounting(UINT mode) {
    g_counting = true;
    return g_setErrorMode(mode);
}

// Its text and its type are needed.
#define HOOK(function, kind, failed) \
    Hook<decltype([] {}), ClassOf(kind), failed, decltype(function)>::Row(#function)

constexpr INT_PTR NoHandle = -1;
constexpr INT_PTR NoMemoryStatus = static_cast<INT_PTR>(0xC0000017u);

const Patch Patches[] = {
    HOOK(CreateFileW, "open", NoHandle),
    HOOK(GetFileAttributesExW, "attributes", 0),
    HOOK(SetFileAttributesW, "attributes", 0),
    HOOK(GetFileInformationByHandle, "attributes", 0),
    HOOK(GetFileInformationByHandleEx, "attributes", 0),
    HOOK(DeleteFileW, "delete", 0),
    HOOK(RemoveDirectoryW, "delete", 0),
    HOOK(FindFirstFileExW, "list", NoHandle),
    HOOK(FindNextFileW, "list", 0),
    HOOK(FindFirstChangeNotificationW, "list", NoHandle),
    HOOK(FindNextChangeNotification, "list", 0),
    HOOK(MoveFileExW, "rename", 0),
    HOOK(CreateDirectoryW, "folder", 0),
    HOOK(ReadFile, "read", 0),
    HOOK(WriteFile, "write", 0),
    HOOK(FlushFileBuffers, "flush", 0),
    HOOK(malloc, "allocate", 0),
    HOOK(calloc, "allocate", 0),
    HOOK(realloc, "allocate", 0),
    HOOK(_aligned_malloc, "allocate", 0),
    HOOK(CreateThread, "thread", 0),
    HOOK(_beginthreadex, "thread", 0),
    HOOK(ResumeThread, "thread", NoHandle),
    HOOK(CreateEventW, "thread", 0),
    HOOK(WinHttpOpen, "winhttp", 0),
    HOOK(WinHttpConnect, "winhttp", 0),
    HOOK(WinHttpOpenRequest, "winhttp", 0),
    HOOK(WinHttpAddRequestHeaders, "winhttp", 0),
    HOOK(WinHttpSetOption, "winhttp", 0),
    HOOK(WinHttpSetTimeouts, "winhttp", 0),
    HOOK(WinHttpSendRequest, "winhttp", 0),
    HOOK(WinHttpWriteData, "winhttp", 0),
    HOOK(WinHttpReceiveResponse, "winhttp", 0),
    HOOK(WinHttpQueryHeaders, "winhttp", 0),
    HOOK(WinHttpQueryDataAvailable, "winhttp", 0),
    HOOK(WinHttpReadData, "winhttp", 0),
    HOOK(BCryptHash, "bcrypt", NoMemoryStatus),
    HOOK(BCryptCreateHash, "bcrypt", NoMemoryStatus),
    HOOK(BCryptHashData, "bcrypt", NoMemoryStatus),
    HOOK(BCryptFinishHash, "bcrypt", NoMemoryStatus),
    HOOK(K32EnumProcesses, "processes", 0),
    HOOK(OpenProcess, "processes", 0),
    HOOK(GetProcessTimes, "processes", 0),
    HOOK(K32GetProcessImageFileNameW, "processes", 0),
    HOOK(AllocConsole, "console", 0),
    HOOK(ReadConsoleInputW, "console", 0),
    HOOK(GetNumberOfConsoleInputEvents, "console", 0),
    HOOK(DialogBoxParamW, "dialog", NoHandle),
    {"SetErrorMode", reinterpret_cast<void*>(&BeginCounting), reinterpret_cast<void**>(&g_setErrorMode)},
};

void PatchImport(const char* name, ULONGLONG& function) {
    const auto patch = std::ranges::find_if(
        Patches, [name](const Patch& known) { return std::strcmp(known.name, name) == 0; });
    if (patch != std::end(Patches)) {
        *patch->real = reinterpret_cast<void*>(function);
        DWORD protection = 0;
        VirtualProtect(&function, sizeof(function), PAGE_READWRITE, &protection);
        function = reinterpret_cast<ULONGLONG>(patch->hook);
        VirtualProtect(&function, sizeof(function), protection, &protection);
    }
}

template <class T>
T* At(char* image, ULONGLONG offset) {
    return reinterpret_cast<T*>(image + offset);
}

void PatchImports(char* image) {
    const auto newHeader = static_cast<ULONGLONG>(At<IMAGE_DOS_HEADER>(image, 0)->e_lfanew);
    const DWORD imports = At<IMAGE_NT_HEADERS>(image, newHeader)
                              ->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT]
                              .VirtualAddress;
    for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(image, imports); library->Name != 0; ++library) {
        auto* name = At<IMAGE_THUNK_DATA>(image, library->OriginalFirstThunk);
        auto* slot = At<IMAGE_THUNK_DATA>(image, library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                PatchImport(At<IMAGE_IMPORT_BY_NAME>(image, name->u1.AddressOfData)->Name, slot->u1.Function);
            }
        }
    }
}

void ReadSettings() {
    const auto read = [](const char* name, auto& value) {
        const DWORD length = GetEnvironmentVariableA(name, value, sizeof(value));
        value[length < sizeof(value) ? length : 0] = 0;
    };
    char text[64] = "";
    read("STRICT_REPORT", g_report);
    read("STRICT_FAULT", text);
    std::sscanf(text, "%15s %ld %ld %lu", g_fault.kind, &g_fault.first, &g_fault.last, &g_fault.error);
    read("STRICT_ANSWER", text);
    g_answer = std::atoi(text);
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        ReadSettings();
        PatchImports(reinterpret_cast<char*>(GetModuleHandleW(nullptr)));
    } else if (reason == DLL_PROCESS_DETACH) {
        for (const std::string_view& kind : Classes) {
            Report(std::string(kind) + " " + std::to_string(g_calls[&kind - Classes]));
        }
    }
    return TRUE;
}
