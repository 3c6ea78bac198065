#include "Libs/Processes/Core/src/PathIdentity.h"

#include <windows.h>

#include <memory>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"

namespace PathIdentity {

namespace {

struct CloseHandleDeleter {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<void, CloseHandleDeleter>;

std::wstring ToWide(const std::string& path) {
    std::wstring wide;
    return Platform::Utf8ToWide(path, wide) == Platform::EncodingOutcome::Done ? wide : std::wstring();
}

// Empty when the path leads nowhere or when the volume has no such name to give.
std::wstring FinalPath(const std::wstring& path) {
    HANDLE handle = CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return {};
    }
    const UniqueHandle owner(handle);
    std::wstring finalPath(MAX_PATH, L'\0');
    DWORD length = GetFinalPathNameByHandleW(handle, finalPath.data(), MAX_PATH, FILE_NAME_NORMALIZED);
    if (length >= finalPath.size()) { // then it is the size to come back with
        finalPath.resize(length);
        length = GetFinalPathNameByHandleW(handle, finalPath.data(), length, FILE_NAME_NORMALIZED);
    }
    finalPath.resize(length < finalPath.size() ? length : 0);
    return finalPath;
}

// The tag of a reparse point stands only in the folder's listing.
bool IsLinkAt(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        return false;
    }
    WIN32_FIND_DATAW entry = {};
    HANDLE find = FindFirstFileW(path.c_str(), &entry);
    if (find == INVALID_HANDLE_VALUE) {
        return true; // rather than to follow it
    }
    FindClose(find);
    return PlatformHelpers::IsLinkEntry(entry.dwFileAttributes, entry.dwReserved0);
}

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool HasLinkOnTheWay(const std::wstring& folder, const std::wstring& name) {
    std::size_t end = name.find_first_of(L"\\/");
    for (; end != std::wstring::npos; end = name.find_first_of(L"\\/", end + 1)) {
        if (IsLinkAt(folder + name.substr(0, end))) {
            return true;
        }
    }
    return IsLinkAt(folder + name);
}

} // namespace

bool IsLink(const std::string& path) {
    return IsLinkAt(ToWide(path));
}

bool LiesInside(const std::string& folder, const std::string& relativeName) {
    const std::wstring wideFolder = ToWide(FolderPath::Join(folder, ""));
    const std::wstring wideName = ToWide(relativeName);
    if (wideFolder.empty() || wideName.empty() || !Exists(wideFolder + wideName) ||
        HasLinkOnTheWay(wideFolder, wideName)) {
        return false;
    }
    // Not every link shows in the attributes, and not every volume knows final paths: each check covers the
    // other.
    const std::wstring finalFolder = FinalPath(wideFolder);
    return finalFolder.empty() || FinalPath(wideFolder + wideName).starts_with(finalFolder + L'\\');
}

std::string IdentityOf(const std::string& path) {
    std::string identity;
    const bool isKnown =
        Platform::WideToUtf8(FinalPath(ToWide(path)), identity) == Platform::EncodingOutcome::Done;
    return isKnown ? identity : std::string();
}

bool IsSameFolder(const std::string& left, const std::string& right) {
    const std::wstring finalLeft = FinalPath(ToWide(left));
    return !finalLeft.empty() && finalLeft == FinalPath(ToWide(right));
}

} // namespace PathIdentity
