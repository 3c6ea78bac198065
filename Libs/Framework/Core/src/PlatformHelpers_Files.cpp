#include "Libs/Framework/Core/src/PlatformHelpers_Files.h"

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Encoding.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Retry.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace PlatformHelpers {

namespace {

ResultCode AttributesFailure(const std::string& shownPath, DWORD wanted, uint32_t systemError) {
    if (IsAccessDenied(systemError)) {
        PLATFORM_LOG(
            Platform::ErrorLog,
            " Failed to set file attributes on file \"%s\" to %08X with access denied after several retries",
            shownPath.c_str(), static_cast<unsigned>(wanted));
    } else {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to set file attributes on file \"%s\" to %08X. Error Code=0x%08X",
                     shownPath.c_str(), static_cast<unsigned>(wanted), static_cast<unsigned>(systemError));
    }
    return "Failed to make file writable";
}

ResultCode SetReadOnly(const std::string& path, bool readOnly) {
    std::wstring systemPath;
    if (!ToSystemPath(path, systemPath)) {
        return "Failed to make file writable";
    }
    return SetReadOnlyAt(systemPath, path, readOnly, Sleep);
}

} // namespace

uint32_t ErrorOfCall(bool succeeded) {
    if (succeeded) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

ResultCode FileRemovalFailure(const std::string& shownPath, uint32_t systemError) {
    if (IsAccessDenied(systemError)) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to delete file \"%s\" with access denied after several retries",
                     shownPath.c_str());
    } else {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete file \"%s\". Error Code=0x%08X",
                     shownPath.c_str(), static_cast<unsigned>(systemError));
    }
    return "Failed to delete file";
}

ResultCode FolderRemovalFailure(const std::string& shownPath, uint32_t systemError) {
    if (IsAccessDenied(systemError)) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to delete folder \"%s\" with access denied after several retries",
                     shownPath.c_str());
    } else {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete folder \"%s\". Error Code=0x%08X",
                     shownPath.c_str(), static_cast<unsigned>(systemError));
    }
    return "Failed to delete folder";
}

ResultCode RemoveFileAt(const std::wstring& systemPath, const std::string& shownPath) {
    const RetryResult retried =
        RetryWhileDenied([&] { return ErrorOfCall(DeleteFileW(systemPath.c_str())); }, Sleep);
    return retried.outcome == RetryOutcome::Done ? Platform::Success
                                                 : FileRemovalFailure(shownPath, retried.error);
}

ResultCode RemoveFile(const std::string& path) {
    std::wstring systemPath;
    if (!ToSystemPath(path, systemPath)) {
        return "Failed to remove file because could not convert multi-byte path to wide path!";
    }
    return RemoveFileAt(systemPath, path);
}

ResultCode SetReadOnlyAt(const std::wstring& systemPath, const std::string& shownPath, bool readOnly,
                         const RetryPause& pause) {
    DWORD wanted = INVALID_FILE_ATTRIBUTES;
    const auto attempt = [&] {
        const DWORD attributes = GetFileAttributesW(systemPath.c_str());
        wanted = readOnly ? attributes | FILE_ATTRIBUTE_READONLY
                          : attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY);
        return ErrorOfCall(attributes != INVALID_FILE_ATTRIBUTES &&
                           SetFileAttributesW(systemPath.c_str(), wanted));
    };
    const RetryResult retried = RetryWhileDenied(attempt, pause);
    return retried.outcome == RetryOutcome::Done ? Platform::Success
                                                 : AttributesFailure(shownPath, wanted, retried.error);
}

ResultCode MakeFileWritable(const std::string& path) {
    return SetReadOnly(path, false);
}

ResultCode MakeFileReadOnly(const std::string& path) {
    return SetReadOnly(path, true);
}

} // namespace PlatformHelpers
