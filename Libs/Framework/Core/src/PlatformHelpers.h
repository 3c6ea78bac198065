#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The framework's layer over the operating system. Paths in and out are UTF-8. Nothing here throws or keeps
// state; any thread may call. System error numbers go to the error log, results carry fixed texts.
namespace PlatformHelpers {

// One entry of a folder. Times are system file times (100 ns since 1601).
struct PathInfo {
    std::string name;
    uint32_t attributes = 0; // as the system reports them
    uint64_t creationTime = 0;
    uint64_t lastAccessTime = 0;
    uint64_t lastWriteTime = 0;
    uint64_t size = 0; // bytes

    bool IsFolder() const { return (attributes & 0x10) != 0; }
    bool IsReadOnly() const { return (attributes & 0x01) != 0; }
    bool IsLink() const { return (attributes & 0x400) != 0; } // junction or symbolic link
};

// Clearing keepGoing ends the enumeration with success; a failure ends it with that failure. The PathInfo is
// re-used from entry to entry: copy what shall last.
using EnumerationCallback = std::function<ResultCode(const PathInfo&, bool& keepGoing)>;

enum EnumerationMode : uint32_t { EnumerateFiles = 1, EnumerateFolders = 2 };

// The entries directly inside a folder, whose path must end in a separator; "." and ".." are never among them.
ResultCode EnumerateFolder(const std::string& topLevelFolder, uint32_t mode, const EnumerationCallback& callback);

// Conversions between UTF-8 and UTF-16 give composed text (normalisation form C) and refuse ill-formed input.
ResultCode Utf8ToWide(std::string_view text, std::wstring& wide);
ResultCode WideToUtf8(std::wstring_view wide, std::string& text);
ResultCode NormalizeWide(std::wstring_view text, std::wstring& normalized);

// C:\dumps becomes C:\dumps\ and C:/dumps/ becomes C:/dumps\ (the last separator alone changes).
ResultCode EnsureTrailingFolderSeparator(std::string& folderPath);

ResultCode CreateFolderTree(const std::string& path);
ResultCode EnsureFolderExists(const std::string& path);

// These three try again for about a second while the system denies access.
ResultCode RemoveFile(const std::string& path);
ResultCode MakeFileWritable(const std::string& path);
ResultCode MakeFileReadOnly(const std::string& path);

// Deletes a folder with all it holds. Read-only files go first, so that a folder whose deletion was cut short no
// longer carries the mark of a complete one. Links are removed as links; what they point to is never touched.
ResultCode RemoveFolder(const std::string& path);

struct FileStatus {
    bool isReadOnly = false;
    bool isFolder = false;
    uint64_t size = 0;
};
ResultCode QueryFileStatus(const std::string& path, FileStatus& status);

// True for anything of that name, file or folder. Logs nothing.
bool PathExists(const std::string& path);

ResultCode EnumerateProcesses(std::vector<uint32_t>& processIds);
ResultCode GetProcessImageName(uint32_t processId, std::string& name);

struct ModuleVersion {
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t build = 0;
    uint32_t revision = 0;
};
ResultCode GetModuleVersion(const std::string& modulePath, ModuleVersion& version, uint32_t& changelist);

// Documents\<name> of the user; Documents itself is created when missing, the named folder is not.
ResultCode GetUserFolder(const std::string& applicationFolderName, std::string& folder);

} // namespace PlatformHelpers
