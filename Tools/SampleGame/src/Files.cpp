#include "Tools/SampleGame/src/Files.h"

#include <algorithm>

#include <windows.h>

namespace SampleGame {

std::wstring Wide(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // UTF-16 never has more units
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

std::string Narrow(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string narrow(3 * text.size(), '\0'); // UTF-8 never has more bytes
    narrow.resize(static_cast<std::size_t>(WideCharToMultiByte(
        CP_UTF8, 0, text.data(), size, narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr)));
    return narrow;
}

bool MakeFolders(const std::string& folder) {
    const auto make = [&] {
        return CreateDirectoryW(Wide(folder).c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
    };
    if (make()) {
        return true;
    }
    const std::size_t separator = folder.find_last_of("\\/");
    return separator != std::string::npos && separator > 0 && MakeFolders(folder.substr(0, separator)) &&
           make();
}

void* CreateEmptyFile(const std::string& path) {
    const HANDLE file = CreateFileW(Wide(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    return file == INVALID_HANDLE_VALUE ? nullptr : file;
}

bool CloseFlushed(void* file) {
    const bool isFlushed = FlushFileBuffers(file) != 0;
    return CloseHandle(file) && isFlushed;
}

bool WriteWholeFile(const std::string& path, std::string_view content) {
    constexpr std::size_t LargestPiece = 1 << 20;
    void* const file = CreateEmptyFile(path);
    bool isGood = file != nullptr;
    while (isGood && !content.empty()) {
        const auto size = static_cast<DWORD>(std::min(content.size(), LargestPiece));
        DWORD written = 0;
        isGood = WriteFile(file, content.data(), size, &written, nullptr) && written == size;
        content.remove_prefix(size);
    }
    return file && CloseFlushed(file) && isGood;
}

bool MakeReadOnly(const std::string& path) {
    return SetFileAttributesW(Wide(path).c_str(), FILE_ATTRIBUTE_READONLY) != 0;
}

} // namespace SampleGame
