// Linked into every test program on Windows, whose file calls then pass through here. Windows refuses names
// of 248 units and more that do not begin with "\\?\", unless a machine's registry says otherwise; Wine takes
// them all. So the program ends if such a name goes out.
#include <windows.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {

constexpr std::size_t FirstLongLength = 248;

void Check(const wchar_t* name) {
    if (name && std::wcslen(name) >= FirstLongLength && std::wcsncmp(name, LR"(\\?\)", 4) != 0) {
        std::fprintf(stderr, "A name of %zu units without the literal form: %ls\n", std::wcslen(name), name);
        std::fflush(stderr);
        std::abort();
    }
}

// Checked<&CreateFileW>::Call checks the first argument, a name, and calls the function that was imported.
template <auto Function>
struct Checked;

template <class Result, class... Rest, Result(WINAPI* Function)(const wchar_t*, Rest...)>
struct Checked<Function> {
    static inline Result(WINAPI* s_imported)(const wchar_t*, Rest...) = nullptr;
    static Result WINAPI Call(const wchar_t* name, Rest... rest) {
        Check(name);
        return s_imported(name, rest...);
    }
};

// Exchanges an imported function in this program's own import table.
template <auto Function>
void Exchange(const char* functionName) {
    auto* const base = reinterpret_cast<std::byte*>(GetModuleHandleW(nullptr));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         library->Name; ++library) {
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal) || std::strcmp(import->Name, functionName) != 0) {
                continue;
            }
            DWORD protection = 0;
            VirtualProtect(address, sizeof(*address), PAGE_READWRITE, &protection);
            using Checking = Checked<Function>;
            Checking::s_imported = reinterpret_cast<decltype(Checking::s_imported)>(address->u1.Function);
            address->u1.Function = reinterpret_cast<ULONGLONG>(&Checking::Call);
            VirtualProtect(address, sizeof(*address), protection, &protection);
        }
    }
}

const bool g_isChecking = [] {
    Exchange<&CreateFileW>("CreateFileW");
    Exchange<&CreateDirectoryW>("CreateDirectoryW");
    Exchange<&DeleteFileW>("DeleteFileW");
    Exchange<&FindFirstFileExW>("FindFirstFileExW");
    Exchange<&FindFirstChangeNotificationW>("FindFirstChangeNotificationW");
    Exchange<&GetFileAttributesW>("GetFileAttributesW");
    Exchange<&GetFileAttributesExW>("GetFileAttributesExW");
    Exchange<&GetFileVersionInfoSizeW>("GetFileVersionInfoSizeW");
    Exchange<&MoveFileExW>("MoveFileExW");
    Exchange<&RemoveDirectoryW>("RemoveDirectoryW");
    Exchange<&SetFileAttributesW>("SetFileAttributesW");
    return true;
}();

} // namespace
