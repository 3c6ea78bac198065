#include "Libs/Framework/Core/src/PlatformHelpers_LiteralPath.h"

#include <algorithm>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"

namespace PlatformHelpers {

namespace {

constexpr std::wstring_view LiteralPrefix = L"\\\\?\\";

bool IsDriveAt(std::wstring_view path) {
    return path.size() >= 2 && path[1] == L':';
}

// Nothing to resolve: C:\a\b, without an empty component, "." or "..".
bool IsPlainAbsolute(std::wstring_view path) {
    if (!IsDriveAt(path) || path.size() < 3 || path[2] != L'\\') {
        return false;
    }
    while (path.size() > 3 && path.back() == L'\\') {
        path.remove_suffix(1);
    }
    for (std::size_t start = 3; start < path.size();) {
        const std::size_t end = std::min(path.find(L'\\', start), path.size());
        const std::wstring_view component = path.substr(start, end - start);
        if (component.empty() || component == L"." || component == L"..") {
            return false;
        }
        start = end + 1;
    }
    return true;
}

void StripTrailingSeparators(std::wstring& path) {
    while (!path.empty() && path.back() == L'\\') {
        path.pop_back();
    }
}

std::wstring FullPath(const std::wstring& path) {
    const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(room, L'\0');
    const DWORD length = GetFullPathNameW(path.c_str(), room, full.data(), nullptr);
    if (length == 0 || length >= room) {
        return path; // not to be resolved: the call it is meant for says why
    }
    full.resize(length);
    return full;
}

// What the system calls the file that it opens for this path, without its drive. Empty when it can't be
// opened or asked.
std::wstring OpenedName(const std::wstring& path, DWORD linkFlag) {
    constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE file = CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, ShareAll, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS | linkFlag, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return {};
    }
    constexpr std::size_t MaxPathUnits = 32768;
    struct {
        DWORD bytes;
        wchar_t name[MaxPathUnits];
    } answer;
    const bool answered = GetFileInformationByHandleEx(file, FileNameInfo, &answer, sizeof answer);
    CloseHandle(file);
    return answered ? std::wstring(answer.name, answer.bytes / sizeof(wchar_t)) : std::wstring();
}

// Where a name of this folder would be: C:\a\ becomes \a\ and the root stays \.
std::wstring OpenedFolder(const std::wstring& literalFolder) {
    std::wstring name = OpenedName(literalFolder, 0);
    if (!name.empty() && name.back() != L'\\') {
        name.push_back(L'\\');
    }
    return name;
}

// Drops dots and blanks at the end of every name: some layers report names without them.
std::wstring WithoutNameTails(std::wstring_view path) {
    std::wstring plain;
    for (const wchar_t unit : path) {
        while (unit == L'\\' && !plain.empty() && (plain.back() == L'.' || plain.back() == L' ')) {
            plain.pop_back();
        }
        plain.push_back(unit);
    }
    plain.resize(plain.find_last_not_of(L". ") + 1);
    return plain;
}

} // namespace

std::wstring ToLiteralPath(std::wstring widePath) {
    std::ranges::replace(widePath, L'/', L'\\');
    if (widePath.starts_with(LiteralPrefix)) {
        StripTrailingSeparators(widePath);
        return widePath;
    }
    if (!IsPlainAbsolute(widePath)) {
        widePath = FullPath(widePath);
    }
    StripTrailingSeparators(widePath);
    if (widePath.starts_with(L"\\\\")) {
        return std::wstring(LiteralPrefix).append(L"UNC").append(widePath, 1);
    }
    return std::wstring(LiteralPrefix).append(widePath);
}

bool IsDrive(std::wstring_view literalPath) {
    return literalPath.find(L'\\', LiteralPrefix.size()) == std::wstring_view::npos;
}

bool IsFolderLink(const std::wstring& literalPath) {
    constexpr DWORD FolderLink = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    const DWORD attributes = GetFileAttributesW(literalPath.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FolderLink) != FolderLink) {
        return false;
    }
    WIN32_FIND_DATAW entry = {}; // knows the kind
    HANDLE find =
        FindFirstFileExW(literalPath.c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr, 0);
    if (find == INVALID_HANDLE_VALUE) {
        return true; // rather than to follow it
    }
    FindClose(find);
    return IsLinkEntry(entry.dwFileAttributes, entry.dwReserved0);
}

Place::Place(const std::wstring& literalFolder)
    : m_length(literalFolder.size()), m_openedFolder(OpenedFolder(literalFolder)) {}

bool Place::Holds(const std::wstring& literalPath) const {
    if (m_openedFolder.empty()) {
        return true;
    }
    const std::wstring opened = OpenedName(literalPath, FILE_FLAG_OPEN_REPARSE_POINT);
    if (opened.empty()) {
        return true;
    }
    const std::wstring actual = WithoutNameTails(opened);
    const std::wstring expected = WithoutNameTails(m_openedFolder + literalPath.substr(m_length));
    return CompareStringOrdinal(actual.c_str(), static_cast<int>(actual.size()), expected.c_str(),
                                static_cast<int>(expected.size()), TRUE) == CSTR_EQUAL;
}

} // namespace PlatformHelpers
