#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Encoding.h"
#include "Libs/Framework/Core/src/PlatformHelpers_FolderListing.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

namespace PlatformHelpers {

namespace {

// Most names are ASCII, and a scan meets thousands of them: those are copied into the memory the string has.
ResultCode NameToUtf8(const wchar_t* wideName, std::string& name) {
    name.clear();
    for (const wchar_t* unit = wideName; *unit != 0; ++unit) {
        if (*unit >= 0x80) {
            return WideToUtf8(wideName, name);
        }
        name.push_back(static_cast<char>(*unit));
    }
    return Platform::Success;
}

ResultCode ToPathInfo(const FolderListing& listing, PathInfo& info) {
    info.attributes = listing.Attributes();
    info.reparseTag = listing.ReparseTag();
    info.creationTime = listing.CreationTime();
    info.lastAccessTime = listing.LastAccessTime();
    info.lastWriteTime = listing.LastWriteTime();
    info.size = listing.Size();
    return NameToUtf8(listing.Name(), info.name);
}

EnumerationMode ModeOf(uint32_t attributes) {
    return (attributes & FolderAttribute) != 0 ? EnumerateFolders : EnumerateFiles;
}

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

} // namespace

ResultCode EnumerateFolder(const std::string& topLevelFolder, uint32_t mode,
                           const EnumerationCallback& callback) {
    PLATFORM_ASSERT(!topLevelFolder.empty());
    PLATFORM_ASSERT_TEXT(
        topLevelFolder.empty() || IsSeparator(topLevelFolder.back()),
        R"(topLevelFolder[topLevelFolder.size() -1] == '\\' || topLevelFolder[topLevelFolder.size() -1] == '/')");
    if (topLevelFolder.empty() || !IsSeparator(topLevelFolder.back())) {
        return "Failed to enumerate files"; // the listing of some other folder would be worse
    }
    std::wstring folder;
    if (const ResultCode result = ToSystemPath(topLevelFolder, folder); !result) {
        return result;
    }
    FolderListing listing(folder);
    PathInfo info;
    while (listing.Next()) {
        if ((mode & ModeOf(listing.Attributes())) == 0) {
            continue;
        }
        bool keepGoing = true;
        ResultCode result = ToPathInfo(listing, info);
        if (result) {
            result = callback(info, keepGoing);
        }
        if (!result || !keepGoing) {
            return result;
        }
    }
    if (listing.HasFailed()) {
        return "Failed to enumerate files";
    }
    return Platform::Success;
}

ResultCode EnsureTrailingFolderSeparator(std::string& folderPath) {
    PLATFORM_ASSERT_TEXT(!folderPath.empty(), "!\"!folderPath.empty()\"");
    if (folderPath.empty()) {
        return "Unexpected empty string passed to PlatformHelpers::EnsureTrailingFolderSeparator";
    }
    if (IsSeparator(folderPath.back())) {
        folderPath.back() = '\\';
    } else {
        folderPath.push_back('\\');
    }
    return Platform::Success;
}

ResultCode CreateFolderTree(const std::string& path) {
    std::wstring widePath;
    if (!ToWidePath(path, widePath)) {
        return "Failed to convert file path from multi-byte to wide for directory creation";
    }
    if (!Platform::CreateDirectoryTree(widePath.c_str())) {
        return "Failed to create directory tree";
    }
    return Platform::Success;
}

ResultCode EnsureFolderExists(const std::string& path) {
    std::wstring widePath;
    if (!ToWidePath(path, widePath)) {
        return "Ensuring folder existence failed! Failed to convert folder path from multi-byte to wide "
               "string!";
    }
    if (!Platform::CreateDirectoryTree(widePath.c_str())) {
        return "Ensuring folder existence failed! Failed to create folder";
    }
    return Platform::Success;
}

} // namespace PlatformHelpers
