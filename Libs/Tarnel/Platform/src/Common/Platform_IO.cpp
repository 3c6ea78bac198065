#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

#include <chrono>
#include <thread>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

namespace Platform {
namespace {

constexpr bool IsSeparator(char c) {
    return c == '/' || c == PathSeparator;
}

std::size_t NextSeparator(std::string_view path, std::size_t from) {
    while (from < path.size() && !IsSeparator(path[from])) {
        ++from;
    }
    return from;
}

// The end of what is never created: the first name of a path, such as its drive; of \\?\C:\ the drive; of
// \\server\share\ and \\?\UNC\server\share\ the share.
std::size_t EndOfRoot(std::string_view path) {
    const bool isDouble = path.size() > 2 && IsSeparator(path[0]) && IsSeparator(path[1]);
    if (PathSeparator != '\\' || !isDouble) {
        return NextSeparator(path, 0);
    }
    const bool isLiteral = path[2] == '?' || path[2] == '.';
    const bool isShare =
        !isLiteral || (path.size() > 7 && path.substr(4, 3) == "UNC" && IsSeparator(path[7]));
    std::size_t end = isLiteral ? (isShare ? 7 : 3) : 1;
    for (int names = isShare ? 2 : 1; names > 0; --names) {
        end = NextSeparator(path, end + 1);
    }
    return end;
}

} // namespace

bool Exists(const SystemPath& path) noexcept {
    FileInfo info;
    return QueryInfo(path, info) == NoError;
}

bool CreateOneDirectory(const char* szCompleteFilePath) {
    PLATFORM_ASSERT(szCompleteFilePath);
    return szCompleteFilePath && CreateOneFolder(szCompleteFilePath) == NoError;
}

bool CreateOneDirectory(const wchar_t* szCompleteFilePath) {
    PLATFORM_ASSERT(szCompleteFilePath);
    return szCompleteFilePath && CreateOneFolder(std::wstring_view(szCompleteFilePath)) == NoError;
}

bool CreateDirectoryTree(const char* path) {
    if (CreateOneDirectory(path)) {
        return true;
    }
    const std::string_view whole = path ? path : "";
    std::size_t end = NextSeparator(whole, EndOfRoot(whole) + 1);
    if (end >= whole.size()) {
        return false;
    }
    for (; end < whole.size(); end = NextSeparator(whole, end + 1)) {
        if (CreateOneFolder(whole.substr(0, end)) != NoError) {
            return false;
        }
    }
    return CreateOneFolder(whole) == NoError;
}

bool CreateDirectoryTree(const wchar_t* path) {
    std::string utf8;
    return path ? ConvertString(std::wstring_view(path), utf8) == ConvertString_Done &&
                      CreateDirectoryTree(utf8.c_str())
                : CreateOneDirectory(path);
}

void SleepFor(uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

SystemError OpenOrCreate(File& file, const SystemPath& path, uint32_t access, Patience patience) noexcept {
    const SystemError error = file.Open(path, access | FileCreateNew, ShareAll);
    return error == NoError ? error : file.Open(path, access, ShareAll, patience);
}

void ReportOpening(SystemError error) {
    PLATFORM_ASSERT_TEXT_MESSAGE(error != File::NoAccess, "false", "File access flags not specified");
    PLATFORM_ASSERT_TEXT_MESSAGE(error != File::NoSize, "false", "Invalid file size, closing file");
}

bool File::Close() {
    PLATFORM_ASSERT_TEXT_MESSAGE(m_handle, "file_handle != INVALID_HANDLE_VALUE",
                                 "Invalid File Handle passed into CloseFile");
    m_size = 0;
    const bool wasOpen = static_cast<bool>(m_handle);
    const bool isClosed = m_handle.Close();
    PLATFORM_ASSERT_TEXT_MESSAGE(isClosed, "false", "File close failed");
    return wasOpen && isClosed;
}

} // namespace Platform
