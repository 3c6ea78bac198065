// Holds files open without sharing, as a virus scanner or a backup does; or for writing, and shares them.
//
//   FileHolder [--writing] FILE...      prints "held" once all files are open, and holds them until it is
//   killed, or for a minute
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

#include <windows.h>

int wmain(int argc, wchar_t** argv) {
    const bool isWriting = argc > 1 && std::wcscmp(argv[1], L"--writing") == 0;
    for (int i = isWriting ? 2 : 1; i < argc; ++i) {
        const std::wstring path = std::wstring(L"\\\\?\\") + argv[i];
        // The system closes the handles when the program ends.
        if (CreateFileW(path.c_str(), isWriting ? GENERIC_WRITE : GENERIC_READ,
                        isWriting ? FILE_SHARE_READ | FILE_SHARE_WRITE : 0u, nullptr, OPEN_EXISTING, 0,
                        nullptr) == INVALID_HANDLE_VALUE) {
            std::fprintf(stderr, "%ls: error %lu\n", argv[i], GetLastError());
            return EXIT_FAILURE;
        }
    }
    std::puts("held");
    std::fflush(stdout);
    Sleep(60'000);
    return EXIT_SUCCESS;
}
