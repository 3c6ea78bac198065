#include "Libs/Framework/Core/src/PlatformHelpers_KnownPath.h"

#include <string_view>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Encoding.h"

namespace PlatformHelpers {

namespace {

uint64_t Join(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

} // namespace

ResultCode KnownPath::Set(const std::string& path) {
    return ToSystemPath(path, m_systemPath);
}

bool KnownPath::Query(Status& status) const {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(m_systemPath.c_str(), GetFileExInfoStandard, &data)) {
        return false;
    }
    status.attributes = data.dwFileAttributes;
    status.creationTime = Join(data.ftCreationTime.dwHighDateTime, data.ftCreationTime.dwLowDateTime);
    status.lastWriteTime = Join(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime);
    status.size = Join(data.nFileSizeHigh, data.nFileSizeLow);
    return true;
}

uint64_t PreciseSystemTime() {
    FILETIME time = {};
    GetSystemTimePreciseAsFileTime(&time);
    return Join(time.dwHighDateTime, time.dwLowDateTime);
}

std::string PathOnDisk(const std::string& folder) {
    const std::size_t end = folder.find_last_not_of("\\/");
    const std::size_t before = folder.find_last_of("\\/", end);
    std::wstring systemPath;
    if (end == std::string::npos || before == std::string::npos ||
        !ToSystemPath(folder.substr(0, end + 1), systemPath)) {
        return folder;
    }
    WIN32_FIND_DATAW entry;
    HANDLE find =
        FindFirstFileExW(systemPath.c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr, 0);
    if (find == INVALID_HANDLE_VALUE) {
        return folder;
    }
    FindClose(find);
    std::string name;
    return WideToUtf8(entry.cFileName, name) ? folder.substr(0, before + 1) + name + '\\' : folder;
}

bool FolderTimesTellOfEntries(const std::string& folder) {
    std::wstring systemPath;
    if (!ToSystemPath(folder, systemPath)) {
        return false;
    }
    constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE handle = CreateFileW(systemPath.c_str(), FILE_READ_ATTRIBUTES, ShareAll, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    wchar_t fileSystem[MAX_PATH + 1] = {};
    const bool isNtfs = GetVolumeInformationByHandleW(handle, nullptr, 0, nullptr, nullptr, nullptr,
                                                      fileSystem, MAX_PATH + 1) &&
                        std::wstring_view(fileSystem) == L"NTFS";
    FILE_REMOTE_PROTOCOL_INFO remote = {}; // only a network folder has any
    const bool isRemote =
        GetFileInformationByHandleEx(handle, FileRemoteProtocolInfo, &remote, sizeof remote) != 0;
    CloseHandle(handle);
    return isNtfs && !isRemote;
}

} // namespace PlatformHelpers
