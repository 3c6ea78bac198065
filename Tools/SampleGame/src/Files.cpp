#include "Tools/SampleGame/src/Files.h"

#include <algorithm>

#include <windows.h>

namespace SampleGame {

bool MakeFolders(const std::string& folder) {
    if (CreateDirectoryA(folder.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS) {
        return true;
    }
    const size_t separator = folder.find_last_of("\\/");
    if (separator == std::string::npos || separator == 0 || !MakeFolders(folder.substr(0, separator))) {
        return false;
    }
    return CreateDirectoryA(folder.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}

bool WriteWholeFile(const std::string& path, std::string_view content) {
    constexpr size_t blockSize = 1 << 20;
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    bool good = true;
    while (good && !content.empty()) {
        const auto size = static_cast<DWORD>((std::min)(content.size(), blockSize));
        DWORD written = 0;
        good = WriteFile(file, content.data(), size, &written, nullptr) && written == size;
        content.remove_prefix(size);
    }
    return CloseHandle(file) && good;
}

bool MakeReadOnly(const std::string& path) {
    return SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY) != 0;
}

} // namespace SampleGame
