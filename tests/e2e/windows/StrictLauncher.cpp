// Starts a program with StrictWindows.dll, which lies beside this one, loaded before its first instruction.
//
//   StrictLauncher SECONDS PROGRAM [ARGUMENT]...      no argument with quotation marks or a backslash at its
//   end
//
// Prints "exit code 0x..." at the end. A program that needs longer is ended, and the line is "not ended".
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <string>

#include <windows.h>

namespace {

std::wstring LibraryPath() {
    wchar_t own[MAX_PATH];
    const std::wstring path(own, GetModuleFileNameW(nullptr, own, static_cast<DWORD>(std::size(own))));
    return path.substr(0, path.rfind(L'\\') + 1) + L"StrictWindows.dll";
}

bool LoadInto(HANDLE process, const std::wstring& library) {
    const std::size_t bytes = (library.size() + 1) * sizeof(wchar_t);
    void* const path = VirtualAllocEx(process, nullptr, bytes, MEM_COMMIT, PAGE_READWRITE);
    WriteProcessMemory(process, path, library.c_str(), bytes, nullptr);
    // kernel32 has the same address in every process.
    const auto load = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW"));
    const HANDLE thread = CreateRemoteThread(process, nullptr, 0, load, path, 0, nullptr);
    DWORD module = 0;
    return thread && WaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0 &&
           GetExitCodeThread(thread, &module) && module != 0;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    std::wstring commandLine;
    for (int i = 2; i < argc; ++i) {
        commandLine.append(L"\"").append(argv[i]).append(L"\" ");
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started = {};
    if (argc < 3 || !CreateProcessW(argv[2], commandLine.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                                    nullptr, nullptr, &startup, &started)) {
        std::fprintf(stderr, "not started, error %lu\n", GetLastError());
        return EXIT_FAILURE;
    }
    if (!LoadInto(started.hProcess, LibraryPath())) {
        std::fprintf(stderr, "the library was not loaded\n");
        TerminateProcess(started.hProcess, EXIT_FAILURE);
        return EXIT_FAILURE;
    }
    ResumeThread(started.hThread);
    const auto limit = static_cast<DWORD>(std::wcstoul(argv[1], nullptr, 10) * 1000);
    DWORD code = 0;
    if (WaitForSingleObject(started.hProcess, limit) != WAIT_OBJECT_0) {
        TerminateProcess(started.hProcess, EXIT_FAILURE);
        WaitForSingleObject(started.hProcess, INFINITE);
        std::printf("not ended\n");
    } else if (GetExitCodeProcess(started.hProcess, &code)) {
        std::printf("exit code 0x%lX\n", code);
    }
    return EXIT_SUCCESS;
}
