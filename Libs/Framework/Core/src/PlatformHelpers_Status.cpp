#include <cerrno>

#include <sys/stat.h>
#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Encoding.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace PlatformHelpers {

namespace {

// The C runtime's call with the 64-bit size: the one with 32 bits can't report a dump of 4 GiB. Returns
// errno.
int ReadStatus(const std::wstring& systemPath, FileStatus& status) {
    struct _stat64 data = {};
    if (_wstat64(systemPath.c_str(), &data) != 0) {
        return errno;
    }
    status.isReadOnly = (data.st_mode & _S_IWRITE) == 0;
    status.isFolder = (data.st_mode & _S_IFMT) == _S_IFDIR;
    status.size = static_cast<uint64_t>(data.st_size);
    return 0;
}

// The C runtime takes the question mark of a long path's "\\?\" for a wildcard and finds nothing.
int ReadStatusOfLongPath(const std::wstring& systemPath, FileStatus& status) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(systemPath.c_str(), GetFileExInfoStandard, &data)) {
        return ENOENT; // all that the C runtime says of a path it can't read
    }
    status.isReadOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    status.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    status.size = uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow;
    return 0;
}

} // namespace

ResultCode QueryFileStatus(const std::string& path, FileStatus& status) {
    status = {};
    std::wstring systemPath;
    if (const ResultCode result = ToSystemPath(path, systemPath); !result) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to convert file path from multi-nyte to wide. Input=\"%s\" Error=\"%s\"",
                     path.c_str(), result.Text());
        return result;
    }
    const bool isLong = systemPath.starts_with(L"\\\\?\\");
    const int error = isLong ? ReadStatusOfLongPath(systemPath, status) : ReadStatus(systemPath, status);
    if (error != 0) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to query status of file \"%s\", errno=%d", path.c_str(),
                     error);
        return "Failed to query status of file";
    }
    return Platform::Success;
}

bool PathExists(const std::string& path) {
    std::wstring systemPath;
    return ToSystemPath(path, systemPath) &&
           GetFileAttributesW(systemPath.c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace PlatformHelpers
