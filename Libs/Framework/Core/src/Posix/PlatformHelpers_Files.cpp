#include <cerrno>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

// The part of the helpers that packaging needs, with the results that the agent gives.
namespace PlatformHelpers {

namespace {

constexpr mode_t AnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

ResultCode SetMode(const std::string& path, mode_t clear, mode_t set, const char* what) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || chmod(path.c_str(), (status.st_mode & ~clear) | set) != 0) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to make file \"%s\" %s, errno=%d", path.c_str(), what,
                     errno);
        return "Failed to make file writable"; // the text for either direction
    }
    return Platform::Success;
}

void LogRemoval(const std::string& path, const std::error_code& error) {
    PLATFORM_LOG(Platform::ErrorLog, " Failed to delete \"%s\", errno=%d", path.c_str(), error.value());
}

} // namespace

ResultCode EnsureFolderExists(const std::string& path) {
    if (!Platform::CreateDirectoryTree(path.c_str())) {
        return "Ensuring folder existence failed! Failed to create folder";
    }
    return Platform::Success;
}

ResultCode RemoveFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::remove(path, error)) {
        LogRemoval(path, error ? error : std::make_error_code(std::errc::no_such_file_or_directory));
        return "Failed to delete file";
    }
    return Platform::Success;
}

ResultCode MakeFileWritable(const std::string& path) {
    return SetMode(path, 0, S_IWUSR, "writable");
}

ResultCode MakeFileReadOnly(const std::string& path) {
    return SetMode(path, AnyWrite, 0, "read-only");
}

// Removes links as links.
ResultCode RemoveFolder(const std::string& path) {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    if (error) {
        LogRemoval(path, error);
        return "Failed to delete folder";
    }
    return Platform::Success;
}

ResultCode QueryFileStatus(const std::string& path, FileStatus& status) {
    status = {};
    struct stat data = {};
    if (stat(path.c_str(), &data) != 0) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to query status of file \"%s\", errno=%d", path.c_str(),
                     errno);
        return "Failed to query status of file";
    }
    status.isReadOnly = (data.st_mode & AnyWrite) == 0;
    status.isFolder = S_ISDIR(data.st_mode);
    status.size = static_cast<uint64_t>(data.st_size);
    return Platform::Success;
}

bool PathExists(const std::string& path) {
    struct stat data = {};
    return lstat(path.c_str(), &data) == 0;
}

} // namespace PlatformHelpers
