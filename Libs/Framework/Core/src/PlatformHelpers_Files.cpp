#include "Libs/Framework/Core/src/PlatformHelpers_Files.h"

#include <atomic>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

using Platform::NoError;
using Platform::SystemError;
using Platform::SystemPath;

namespace PlatformHelpers {

namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

// Once a run: a folder is listed again and again.
void LogSkipped(const std::string& folder) {
    static std::atomic_flag isLogged;
    if (!isLogged.test_and_set()) {
        PLATFORM_LOG(Platform::ErrorLog, " Skipped an entry of folder \"%s\" whose name has no UTF-8 form",
                     folder.c_str());
    }
}

} // namespace

ResultCode ConversionFailure(SystemError error) {
    switch (error) {
    case 87: // ERROR_INVALID_PARAMETER
        return "Error while converting MBCS to WCS: Any of the parameter values was invalid.";
    case 122: // ERROR_INSUFFICIENT_BUFFER
        return "Error while converting MBCS to WCS: A supplied buffer size was not large enough, or it was "
               "incorrectly set to NULL.";
    case 1004: // ERROR_INVALID_FLAGS
        return "Error while converting MBCS to WCS: The values supplied for flags were not valid.";
    case Platform::NotText:
        return "Error while converting MBCS to WCS: Invalid Unicode was found in a string.";
    default:
        return "Unknown error while converting MBCS to WCS";
    }
}

ResultCode RemovalFailure(Kind kind, const std::string& shownPath, SystemError error) {
    const char* const name = kind == Kind::File ? "file" : "folder";
    if (Platform::IsHeld(error)) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to delete %s \"%s\" with access denied after several retries", name,
                     shownPath.c_str());
    } else {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete %s \"%s\". Error Code=0x%08X", name,
                     shownPath.c_str(), error);
    }
    return kind == Kind::File ? ResultCode("Failed to delete file") : "Failed to delete folder";
}

ResultCode SetReadOnly(const SystemPath& path, const std::string& shownPath, bool readOnly,
                       const RetryPause& pause) {
    uint32_t wanted = 0;
    const auto attempt = [&] {
        Platform::FileInfo info{.attributes = UINT32_MAX};
        const SystemError error = QueryInfo(path, info);
        wanted = readOnly ? info.attributes | Platform::ReadOnlyAttribute
                          : info.attributes & ~Platform::ReadOnlyAttribute;
        return error == NoError ? SetAttributes(path, wanted) : error;
    };
    const SystemError error =
        path.Error() == NoError ? Platform::RetryWhileHeld(attempt, pause) : path.Error();
    if (error == NoError) {
        return Platform::Success;
    }
    if (Platform::IsHeld(error)) {
        PLATFORM_LOG(
            Platform::ErrorLog,
            " Failed to set file attributes on file \"%s\" to %08X with access denied after several retries",
            shownPath.c_str(), wanted);
    } else {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to set file attributes on file \"%s\" to %08X. Error Code=0x%08X",
                     shownPath.c_str(), wanted, error);
    }
    return "Failed to make file writable"; // the text for either direction
}

ResultCode RemoveFile(const std::string& path) {
    const SystemPath systemPath(path);
    if (systemPath.Error() != NoError) {
        return "Failed to remove file because could not convert multi-byte path to wide path!";
    }
    const SystemError error = Platform::RetryWhileHeld([&] { return Platform::RemoveFile(systemPath); });
    return error == NoError ? Platform::Success : RemovalFailure(Kind::File, path, error);
}

ResultCode MakeFileWritable(const std::string& path) {
    return SetReadOnly(path, path, false, Platform::SleepFor);
}

ResultCode MakeFileReadOnly(const std::string& path) {
    return SetReadOnly(path, path, true, Platform::SleepFor);
}

ResultCode QueryFileStatus(const std::string& path, FileStatus& status) {
    status = {};
    const SystemPath systemPath(path);
    if (systemPath.Error() != NoError) {
        const ResultCode result = ConversionFailure(systemPath.Error());
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to convert file path from multi-nyte to wide. Input=\"%s\" Error=\"%s\"",
                     path.c_str(), result.Text());
        return result;
    }
    Platform::FileInfo info;
    if (const SystemError error = QueryInfo(systemPath, info); error != NoError) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to query status of file \"%s\", errno=%d", path.c_str(),
                     Platform::ErrnoOf(error));
        return "Failed to query status of file";
    }
    status = {info.IsReadOnly(), info.IsFolder(), info.size};
    return Platform::Success;
}

bool PathExists(const std::string& path) {
    return Platform::Exists(path);
}

ResultCode EnsureTrailingFolderSeparator(std::string& folderPath) {
    PLATFORM_ASSERT_TEXT(!folderPath.empty(), "!\"!folderPath.empty()\"");
    if (folderPath.empty()) {
        return "Unexpected empty string passed to PlatformHelpers::EnsureTrailingFolderSeparator";
    }
    return ExceptionToResult([&] {
        if (IsSeparator(folderPath.back())) {
            folderPath.back() = '\\';
        } else {
            folderPath.push_back('\\');
        }
        return ResultCode(Platform::Success);
    });
}

ResultCode CreateFolderTree(const std::string& path) {
    if (SystemPath(path).Error() != NoError) {
        return "Failed to convert file path from multi-byte to wide for directory creation";
    }
    return Platform::CreateDirectoryTree(path.c_str()) ? Platform::Success
                                                       : ResultCode("Failed to create directory tree");
}

ResultCode EnsureFolderExists(const std::string& path) {
    if (SystemPath(path).Error() != NoError) {
        return "Ensuring folder existence failed! Failed to convert folder path from multi-byte to wide "
               "string!";
    }
    return Platform::CreateDirectoryTree(path.c_str())
               ? Platform::Success
               : ResultCode("Ensuring folder existence failed! Failed to create folder");
}

ResultCode EnumerateFolder(const std::string& topLevelFolder, uint32_t mode,
                           const EnumerationCallback& callback) {
    PLATFORM_ASSERT(!topLevelFolder.empty());
    PLATFORM_ASSERT_TEXT(
        topLevelFolder.empty() || IsSeparator(topLevelFolder.back()),
        R"(topLevelFolder[topLevelFolder.size() -1] == '\\' || topLevelFolder[topLevelFolder.size() -1] == '/')");
    if (topLevelFolder.empty() || !IsSeparator(topLevelFolder.back())) {
        return "Failed to enumerate files"; // the listing of some other folder would be worse
    }
    const SystemPath path(topLevelFolder);
    if (path.Error() != NoError) {
        return ConversionFailure(path.Error());
    }
    return ExceptionToResult([&]() -> ResultCode {
        Platform::FolderListing listing(path);
        PathInfo entry;
        for (bool keepGoing = true; keepGoing && listing.Next();) {
            if ((mode & (listing.Info().IsFolder() ? EnumerateFolders : EnumerateFiles)) == 0) {
                continue;
            }
            static_cast<Platform::FileInfo&>(entry) = listing.Info();
            const SystemError error = Platform::ToUtf8(listing.Name(), entry.name);
            if (error == NoError) {
                RETURN_IF_FAILED(callback(entry, keepGoing));
            } else if (error == Platform::NotText) {
                LogSkipped(topLevelFolder);
            } else {
                return ConversionFailure(error);
            }
        }
        return listing.Error() == NoError ? Platform::Success : ResultCode("Failed to enumerate files");
    });
}

} // namespace PlatformHelpers
