#include <exception>
#include <string>

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_DirectoryTree.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"
#include "Libs/Tarnel/Platform/src/Windows/Platform_SystemPath.h"

namespace Platform {
namespace {

bool CreateSystemDirectory(const std::wstring& systemPath) {
    return CreateDirectoryW(systemPath.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}

} // namespace

bool CreateOneDirectory(const wchar_t* szCompleteFilePath) {
    PLATFORM_ASSERT(szCompleteFilePath);
    if (!szCompleteFilePath) {
        return false;
    }
    try {
        return CreateSystemDirectory(ToSystemPath(szCompleteFilePath));
    } catch (const std::exception&) { // no memory for the path
        return false;
    }
}

// Narrow paths are UTF-8 whatever code page the program runs in, so they go to the wide call.
bool CreateOneDirectory(const char* szCompleteFilePath) {
    PLATFORM_ASSERT(szCompleteFilePath);
    std::wstring path;
    return szCompleteFilePath && ToSystemPath(szCompleteFilePath, path) == EncodingOutcome::Done &&
           CreateSystemDirectory(path);
}

bool CreateDirectoryTree(const wchar_t* path) {
    return CreateTree(path, [](const wchar_t* prefix) { return CreateOneDirectory(prefix); });
}

bool CreateDirectoryTree(const char* path) {
    return CreateTree(path, [](const char* prefix) { return CreateOneDirectory(prefix); });
}

} // namespace Platform
