#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The framework's layer over the operating system. Paths in and out are UTF-8. Nothing here throws or keeps
// state; any thread may call. System error numbers are in the error log, results have fixed texts.
namespace PlatformHelpers {

inline constexpr uint32_t ReadOnlyAttribute = 0x01;
inline constexpr uint32_t FolderAttribute = 0x10;
inline constexpr uint32_t ReparseAttribute = 0x400;

// Whether these mark a junction or a symbolic link. A file or folder that a cloud drive keeps elsewhere
// carries the reparse attribute too, but stands for nothing than itself: its tag lacks the bit for that.
constexpr bool IsLinkEntry(uint32_t attributes, uint32_t reparseTag) {
    constexpr uint32_t StandsForAnother = 0x20000000;
    return (attributes & ReparseAttribute) != 0 && (reparseTag == 0 || (reparseTag & StandsForAnother) != 0);
}

// One entry of a folder. Times are system file times (100 ns since 1601).
struct PathInfo {
    std::string name;
    uint32_t attributes = 0; // as the system reports them
    uint32_t reparseTag = 0; // the kind of a link or of a placeholder; 0 for neither
    uint64_t creationTime = 0;
    uint64_t lastAccessTime = 0;
    uint64_t lastWriteTime = 0;
    uint64_t size = 0; // bytes

    bool IsFolder() const { return (attributes & FolderAttribute) != 0; }
    bool IsReadOnly() const { return (attributes & ReadOnlyAttribute) != 0; }
    bool IsLink() const { return IsLinkEntry(attributes, reparseTag); }
};

// Clearing keepGoing ends the enumeration with success; a failure ends it with that failure. The PathInfo is
// re-used from entry to entry: copy what shall last.
using EnumerationCallback = std::function<ResultCode(const PathInfo&, bool& keepGoing)>;

enum EnumerationMode : uint32_t { EnumerateFiles = 1, EnumerateFolders = 2 };

// The entries directly inside a folder, whose path must end in a separator; never "." and "..".
ResultCode EnumerateFolder(const std::string& topLevelFolder, uint32_t mode,
                           const EnumerationCallback& callback);

// Conversions between UTF-8 and UTF-16 give composed text (normalisation form C) and refuse ill-formed input.
ResultCode Utf8ToWide(std::string_view text, std::wstring& wide);
ResultCode WideToUtf8(std::wstring_view wide, std::string& text);
ResultCode NormalizeWide(std::wstring_view text, std::wstring& normalized);

// C:\dumps becomes C:\dumps\ and C:/dumps/ becomes C:/dumps\ (the last separator alone changes).
ResultCode EnsureTrailingFolderSeparator(std::string& folderPath);

ResultCode CreateFolderTree(const std::string& path);
ResultCode EnsureFolderExists(const std::string& path);

// These three, and the deletion of a folder for each thing in it, try again for about a second while the
// system denies access or somebody holds the file open.
ResultCode RemoveFile(const std::string& path);
ResultCode MakeFileWritable(const std::string& path);
ResultCode MakeFileReadOnly(const std::string& path);

// Deletes a folder with all it holds. Read-only files go first, so that a folder whose deletion was cut short
// no longer carries the mark of a complete one. A link is removed as a link, also when path is one; what it
// points to is never touched: where the system can't remove a link alone, the deletion fails there.
ResultCode RemoveFolder(const std::string& path);

// The same for a caller with many folders to delete, who can't wait that second for each of them: pause is
// called with the milliseconds to wait between two denied attempts, and may return sooner.
using RetryPause = std::function<void(uint32_t milliseconds)>;
ResultCode RemoveFolder(const std::string& path, const RetryPause& pause);

struct FileStatus {
    bool isReadOnly = false;
    bool isFolder = false;
    uint64_t size = 0;
};
ResultCode QueryFileStatus(const std::string& path, FileStatus& status);

// True for anything of that name, file or folder; false too when the system can't tell. Logs nothing.
bool PathExists(const std::string& path);

// At most 4096 of them; the idle process has the id 0.
ResultCode EnumerateProcesses(std::vector<uint32_t>& processIds);

// The image's path, its drive as a device: \Device\HarddiskVolume2\Games\Game.exe.
ResultCode GetProcessImageName(uint32_t processId, std::string& name);

// When the process started, as a file time. Fails for one that has ended.
ResultCode GetProcessCreationTime(uint32_t processId, uint64_t& creationTime);

// Whether image ends in name, whatever stands before it and whatever the case: game.exe matches
// ...\mygame.exe. An empty name matches nothing, so that it can't stand for every process there is.
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
// of 2.0.0.8 (1234). A failure leaves what was found until then.
ResultCode GetModuleVersion(const std::string& modulePath, ModuleVersion& version, uint32_t& changelist);

// Documents\<name> of the user; Documents itself is created when missing, the named folder is not.
ResultCode GetUserFolder(const std::string& applicationFolderName, std::string& folder);

} // namespace PlatformHelpers
