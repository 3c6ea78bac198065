// Stands between an executable and the system once StrictLauncher has loaded it there, by the executable's
// import table. It refuses what a Windows with its default settings refuses and Wine lets pass: long names
// without their prefix, long components, names of devices. It counts the calls of each class, and lets some
// of them fail. Counting begins when the program's entry calls SetErrorMode, after the start of the C
// runtime.
//
//   STRICT_REPORT  file that gets a line for each of the first calls that failed, with the callers' addresses
//                  relative to the executable, and at the end a line "CLASS CALLS" for each class
//   STRICT_FAULT   "CLASS FIRST LAST ERROR": calls FIRST to LAST of the class fail with that Windows error
//   STRICT_ANSWER  what a dialog returns instead of being shown
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

// Up to Folders the calls take paths.
enum Class {
    Open,
    Attributes,
    Rename,
    Delete,
    List,
    Folders,
    Read,
    Write,
    Flush,
    Map,
    Allocate,
    Threads,
    Http,
    Digest,
    Processes,
    Output,
    Dialog,
    ClassCount
}; // clang-format off
constexpr const char* Names[ClassCount] = {
    "open", "attributes", "rename", "delete", "list", "folder", "read", "write", "flush", "map", "allocate",
    "thread", "winhttp", "bcrypt", "processes", "console", "dialog"}; // clang-format on

struct Fault {
    char name[16] = "";
    long first = 0;
    long last = 0;
    unsigned long error = 0;
};

Fault g_fault;
char g_report[4096] = "";
int g_answer = 0;
bool g_counting = false;
volatile LONG g_calls[ClassCount];
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

bool IsToFail(Class kind, const char* function) {
    if (!g_counting) {
        return false;
    }
    const LONG call = InterlockedIncrement(&g_calls[kind]);
    if (std::strcmp(g_fault.name, Names[kind]) != 0 || call < g_fault.first || call > g_fault.last) {
        return false;
    }
    ReportFailure(function);
    SetLastError(g_fault.error);
    return true;
}

bool IsDevice(std::wstring_view name) {
    name = name.substr(0, name.find(L'.'));
    name = name.substr(0, name.find_last_not_of(L' ') + 1);
    const auto is = [&](std::wstring_view other) {
        return name.size() == other.size() && _wcsnicmp(name.data(), other.data(), other.size()) == 0;
    };
    const bool isNumbered = name.size() == 4 && name[3] >= L'1' && name[3] <= L'9';
    if (isNumbered) {
        name.remove_suffix(1);
    }
    return isNumbered ? is(L"COM") || is(L"LPT") : is(L"CON") || is(L"PRN") || is(L"AUX") || is(L"NUL");
}

// The error of a Windows with LongPathsEnabled = 0 for that path, or 0.
DWORD ErrorOf(Class kind, std::wstring_view path) {
    const bool isLiteral = path.starts_with(L"\\\\?\\");
    if (!isLiteral && GetFullPathNameW(path.data(), 0, nullptr, nullptr) > (kind == Folders ? 248u : 260u)) {
        return ERROR_PATH_NOT_FOUND; // that length counts the terminator
    }
    while (!path.empty()) {
        const std::wstring_view name = path.substr(0, path.find_first_of(L"\\/"));
        if (name.size() > 255 || (!isLiteral && IsDevice(name))) {
            return ERROR_INVALID_NAME;
        }
        path.remove_prefix(name.size() < path.size() ? name.size() + 1 : name.size());
    }
    return NO_ERROR;
}

template <class Argument>
bool IsRefused([[maybe_unused]] Class kind, [[maybe_unused]] Argument argument) {
    if constexpr (std::is_same_v<Argument, LPCWSTR>) {
        const DWORD error = kind <= Folders && argument ? ErrorOf(kind, argument) : NO_ERROR;
        if (error != NO_ERROR) {
            Report("refused a path of " + std::to_string(std::wcslen(argument)) + " units");
            SetLastError(error);
            return true;
        }
    }
    return false;
}

// Stands for one function. failed is what the function returns after a failure.
template <class Signature, Class kind, INT_PTR failed, int line>
struct Hook;

template <class R, class... Arguments, Class kind, INT_PTR failed, int line>
struct Hook<R(Arguments...), kind, failed, line> {
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
        if constexpr (kind == Dialog) {
            if (g_answer != 0) {
                return g_answer;
            }
        }
        return s_real(arguments...);
    }

    // The log goes to a pipe or a console.
    static Class KindOf([[maybe_unused]] Arguments... arguments) {
        if constexpr (kind == Write) {
            const HANDLE file = [](HANDLE first, auto...) { return first; }(arguments...);
            return GetFileType(file) == FILE_TYPE_DISK ? Write : Output;
        } else {
            return kind;
        }
    }
};

UINT WINAPI BeginCounting(UINT mode) {
    g_counting = true;
    return SetErrorMode(mode);
}

struct Patch {
    const char* name;
    void* hook;
    void** real = nullptr;
    const char** hookName = nullptr;
};

#define HOOK(function, kind, failed) /* its text, its type and its line are needed */                   \
    Patch {                                                                                             \
#function, reinterpret_cast < void*>(&Hook <decltype(function), kind, failed, __LINE__>::Call), \
            reinterpret_cast < void**>(&Hook <decltype(function), kind, failed, __LINE__>::s_real),     \
            &Hook < decltype(function), kind, failed, __LINE__> ::s_name                                \
    }

constexpr INT_PTR NoHandle = -1;
constexpr INT_PTR NoMemoryStatus = static_cast<INT_PTR>(0xC0000017u);

const Patch Patches[] = {
    {"SetErrorMode", reinterpret_cast<void*>(&BeginCounting)},
    HOOK(CreateFileW, Open, NoHandle),
    HOOK(GetFileAttributesExW, Attributes, 0),
    HOOK(SetFileAttributesW, Attributes, 0),
    HOOK(GetFileInformationByHandle, Attributes, 0),
    HOOK(GetFileInformationByHandleEx, Attributes, 0),
    HOOK(MoveFileExW, Rename, 0),
    HOOK(DeleteFileW, Delete, 0),
    HOOK(RemoveDirectoryW, Delete, 0),
    HOOK(FindFirstFileExW, List, NoHandle),
    HOOK(FindNextFileW, List, 0),
    HOOK(FindFirstChangeNotificationW, List, NoHandle),
    HOOK(FindNextChangeNotification, List, 0),
    HOOK(CreateDirectoryW, Folders, 0),
    HOOK(ReadFile, Read, 0),
    HOOK(WriteFile, Write, 0),
    HOOK(FlushFileBuffers, Flush, 0),
    HOOK(CreateFileMappingW, Map, 0),
    HOOK(MapViewOfFile, Map, 0),
    HOOK(malloc, Allocate, 0),
    HOOK(calloc, Allocate, 0),
    HOOK(realloc, Allocate, 0),
    HOOK(_aligned_malloc, Allocate, 0),
    HOOK(CreateThread, Threads, 0),
    HOOK(_beginthreadex, Threads, 0),
    HOOK(ResumeThread, Threads, NoHandle),
    HOOK(CreateEventW, Threads, 0),
    HOOK(WinHttpOpen, Http, 0),
    HOOK(WinHttpConnect, Http, 0),
    HOOK(WinHttpOpenRequest, Http, 0),
    HOOK(WinHttpAddRequestHeaders, Http, 0),
    HOOK(WinHttpSetOption, Http, 0),
    HOOK(WinHttpSetTimeouts, Http, 0),
    HOOK(WinHttpSendRequest, Http, 0),
    HOOK(WinHttpWriteData, Http, 0),
    HOOK(WinHttpReceiveResponse, Http, 0),
    HOOK(WinHttpQueryHeaders, Http, 0),
    HOOK(BCryptHash, Digest, NoMemoryStatus),
    HOOK(K32EnumProcesses, Processes, 0),
    HOOK(OpenProcess, Processes, 0),
    HOOK(GetProcessTimes, Processes, 0),
    HOOK(K32GetProcessImageFileNameW, Processes, 0),
    HOOK(AllocConsole, Output, 0),
    HOOK(ReadConsoleInputW, Output, 0),
    HOOK(GetNumberOfConsoleInputEvents, Output, 0),
    HOOK(DialogBoxParamW, Dialog, NoHandle),
};

void PatchImport(const char* name, ULONGLONG& function) {
    for (const Patch& patch : Patches) {
        if (std::strcmp(patch.name, name) != 0) {
            continue;
        }
        if (patch.real) {
            *patch.real = reinterpret_cast<void*>(function);
            *patch.hookName = patch.name;
        }
        DWORD protection = 0;
        VirtualProtect(&function, sizeof(function), PAGE_READWRITE, &protection);
        function = reinterpret_cast<ULONGLONG>(patch.hook);
        VirtualProtect(&function, sizeof(function), protection, &protection);
    }
}

void PatchImports(char* image) {
    const auto at = [image]<class T>(T*, ULONGLONG offset) { return reinterpret_cast<T*>(image + offset); };
    const auto* headers = at(static_cast<IMAGE_NT_HEADERS*>(nullptr),
                             static_cast<ULONGLONG>(reinterpret_cast<IMAGE_DOS_HEADER*>(image)->e_lfanew));
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* from = at(static_cast<IMAGE_IMPORT_DESCRIPTOR*>(nullptr), imports); from->Name != 0; ++from) {
        auto* name = at(static_cast<IMAGE_THUNK_DATA*>(nullptr), from->OriginalFirstThunk);
        auto* slot = at(static_cast<IMAGE_THUNK_DATA*>(nullptr), from->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                PatchImport(at(static_cast<IMAGE_IMPORT_BY_NAME*>(nullptr), name->u1.AddressOfData)->Name,
                            slot->u1.Function);
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
    std::sscanf(text, "%15s %ld %ld %lu", g_fault.name, &g_fault.first, &g_fault.last, &g_fault.error);
    read("STRICT_ANSWER", text);
    g_answer = std::atoi(text);
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        ReadSettings();
        PatchImports(reinterpret_cast<char*>(GetModuleHandleW(nullptr)));
    } else if (reason == DLL_PROCESS_DETACH) {
        for (int kind = 0; kind < ClassCount; ++kind) {
            Report(std::string(Names[kind]) + " " + std::to_string(g_calls[kind]));
        }
    }
    return TRUE;
}
