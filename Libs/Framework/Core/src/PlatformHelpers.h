#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The framework's layer over the operating system. Paths in and out are UTF-8, and go to the system as they
// are. Nothing here throws; running out of memory is a failure like any other. Any thread may call. The error
// log has the system's error numbers; results have fixed texts.
namespace PlatformHelpers {

// One entry of a folder.
struct PathInfo : Platform::FileInfo {
    std::string name;
};

// Clearing keepGoing ends the enumeration with success; a failure ends it with that failure. The PathInfo is
// reused from entry to entry: copy what must last.
using EnumerationCallback = std::function<ResultCode(const PathInfo&, bool& keepGoing)>;

enum EnumerationMode : uint32_t { EnumerateFiles = 1, EnumerateFolders = 2 };

// The entries directly inside a folder, whose path must end in a separator; never "." and "..". An entry
// whose name has no UTF-8 form is left out; the first one of a run is logged.
ResultCode EnumerateFolder(const std::string& topLevelFolder, uint32_t mode,
                           const EnumerationCallback& callback);

// Texts, not paths: conversions between UTF-8 and UTF-16 compose (normalisation form C) and refuse ill-formed
// input.
ResultCode Utf8ToWide(std::string_view text, std::wstring& wide);
ResultCode WideToUtf8(std::wstring_view wide, std::string& text);
ResultCode NormalizeWide(std::wstring_view text, std::wstring& normalized);

// C:\dumps becomes C:\dumps\ and C:/dumps/ becomes C:/dumps\ (the last separator alone changes).
ResultCode EnsureTrailingFolderSeparator(std::string& folderPath);

ResultCode CreateFolderTree(const std::string& path);
ResultCode EnsureFolderExists(const std::string& path);

// These three, and RemoveFolder for each thing in the folder, try for about a second while the system denies
// access or somebody holds the file open.
ResultCode RemoveFile(const std::string& path);
ResultCode MakeFileWritable(const std::string& path);
ResultCode MakeFileReadOnly(const std::string& path);

// Deletes a folder with all it holds. Read-only files are deleted first, so that a folder whose deletion was
// cut short never looks complete. A link is removed as a link, even if path is one; what it leads to is never
// touched: if the system can't remove a link alone, the deletion fails there.
ResultCode RemoveFolder(const std::string& path);

// The same for a caller with many folders to delete, who can't wait that second for each: pause is called
// between two denied attempts, and may return sooner.
using Platform::RetryPause;
ResultCode RemoveFolder(const std::string& path, const RetryPause& pause);

struct FileStatus {
    bool isReadOnly = false;
    bool isFolder = false;
    uint64_t size = 0;
};
ResultCode QueryFileStatus(const std::string& path, FileStatus& status);

// True for anything of that name, file or folder; false too if the system can't tell. Logs nothing.
bool PathExists(const std::string& path);

// At most 4096 of them; the idle process has the id 0.
ResultCode EnumerateProcesses(std::vector<uint32_t>& processIds);

// The image's path, its drive as a device: \Device\HarddiskVolume2\Games\Game.exe.
ResultCode GetProcessImageName(uint32_t processId, std::string& name);

// When the process started, as a file time. Fails for one that has ended.
ResultCode GetProcessCreationTime(uint32_t processId, uint64_t& creationTime);

// Whether image ends in name, whatever comes before it and whatever the case: game.exe matches
// ...\mygame.exe. An empty name matches nothing, rather than every process.
bool ImageNameMatches(std::string_view image, std::string_view name);

// The running processes whose image name matches, other than the idle process. Those that this user may not
// ask about are left out.
ResultCode FindProcessesByName(const std::string& name, std::vector<uint32_t>& processIds);

struct ModuleVersion {
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t build = 0;
    uint32_t revision = 0;
};
// Reads the version resource. changelist is the number in brackets of its FileVersion text, such as the 1234
// of 2.0.0.8 (1234). After a failure both hold what was found before it.
ResultCode GetModuleVersion(const std::string& modulePath, ModuleVersion& version, uint32_t& changelist);

// Documents\<name> of the user. Documents itself is created if it is missing, the named folder is not.
ResultCode GetUserFolder(const std::string& applicationFolderName, std::string& folder);

} // namespace PlatformHelpers
