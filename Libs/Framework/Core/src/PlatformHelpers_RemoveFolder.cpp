#include <algorithm>
#include <new>
#include <utility>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Files.h"

using Platform::NoError;
using Platform::SystemError;
using Platform::SystemPath;
using Platform::SystemText;

namespace PlatformHelpers {

namespace {

SystemPath Made(SystemPath path) {
    if (path.Error() == Platform::NoMemory) {
        throw std::bad_alloc();
    }
    return path;
}

// The deletion of one folder. Works on the system's own names, so that names without a UTF-8 form are
// deleted too, and keeps its own stack, so that the depth of the folders does not matter.
class FolderRemoval {
public:
    // shownFolder is the path as log lines show it, with a trailing separator. isReported becomes true if a
    // failure has its line in the log.
    FolderRemoval(SystemPath path, std::string shownFolder, const RetryPause& pause, bool& isReported)
        : m_path(std::move(path)), m_topLength(m_path.Text().size()), m_shownFolder(std::move(shownFolder)),
          m_pause(pause), m_isReported(isReported) {}

    ResultCode Run();

private:
    struct Entry {
        SystemText name;
        bool isReadOnly;
        bool isLink;
    };

    ResultCode EnterFolder();
    ResultCode RemoveFiles(std::vector<Entry>& files);
    ResultCode Remove(const SystemPath& path, Kind kind);
    std::string Shown(const SystemPath& path) const;

    SystemPath m_path; // the folder that is being worked on
    const std::size_t m_topLength;
    const std::string m_shownFolder;
    const RetryPause& m_pause;
    bool& m_isReported;

    // The sub-folders still to delete, the next one last, of each folder down to m_path.
    std::vector<std::vector<Entry>> m_subFolders;
};

ResultCode FolderRemoval::Run() {
    if (IsLink(m_path)) {
        return Remove(m_path, Kind::Folder);
    }
    RETURN_IF_FAILED(EnterFolder());
    while (!m_subFolders.empty()) {
        std::vector<Entry>& subFolders = m_subFolders.back();
        if (subFolders.empty()) {
            RETURN_IF_FAILED(Remove(m_path, Kind::Folder));
            m_path = Made(m_path.Parent());
            m_subFolders.pop_back();
            continue;
        }
        const Entry subFolder = std::move(subFolders.back());
        subFolders.pop_back();
        if (subFolder.isLink) {
            RETURN_IF_FAILED(Remove(Made(m_path.Below(subFolder.name)), Kind::Folder));
        } else {
            m_path = Made(m_path.Below(subFolder.name));
            RETURN_IF_FAILED(EnterFolder());
        }
    }
    return Platform::Success;
}

// Deletes the files of the folder and notes its sub-folders.
ResultCode FolderRemoval::EnterFolder() {
    std::vector<Entry> files;
    std::vector<Entry> subFolders;
    Platform::FolderListing listing(m_path);
    while (listing.Next()) {
        const Platform::FileInfo& info = listing.Info();
        (info.IsFolder() ? subFolders : files).push_back({listing.Name(), info.IsReadOnly(), info.IsLink()});
    }
    if (listing.Error() != NoError) {
        return "Failed to enumerate files";
    }
    std::ranges::reverse(subFolders);
    m_subFolders.push_back(std::move(subFolders));
    return RemoveFiles(files);
}

// A read-only file marks a complete folder. All files are made writable before the first is deleted, and
// those that were read-only are deleted first: cut short at any moment, the folder either still holds
// everything or is not complete any more.
ResultCode FolderRemoval::RemoveFiles(std::vector<Entry>& files) {
    const auto others = std::stable_partition(
        files.begin(), files.end(), [](const Entry& file) { return file.isReadOnly && !file.isLink; });
    for (auto file = files.begin(); file != others; ++file) {
        const SystemPath path = Made(m_path.Below(file->name));
        const ResultCode result = SetReadOnly(path, Shown(path), false, m_pause);
        m_isReported = !result;
        RETURN_IF_FAILED(result);
    }
    for (const Entry& file : files) {
        RETURN_IF_FAILED(Remove(Made(m_path.Below(file.name)), Kind::File));
    }
    return Platform::Success;
}

// A file, an empty folder, or a link to either, which is deleted alone. The read-only attribute may keep the
// system from deleting a folder or a link.
ResultCode FolderRemoval::Remove(const SystemPath& path, Kind kind) {
    const auto remove = [&] {
        return kind == Kind::File ? Platform::RemoveFile(path) : RemoveEmptyFolder(path);
    };
    const auto attempt = [&] {
        const SystemError error = remove();
        Platform::FileInfo info;
        const bool isHindered =
            Platform::IsHeld(error) && QueryInfo(path, info) == NoError && info.IsReadOnly();
        return isHindered && SetAttributes(path, info.attributes & ~Platform::ReadOnlyAttribute) == NoError
                   ? remove()
                   : error;
    };
    const SystemError error = Platform::RetryWhileHeld(attempt, m_pause);
    m_isReported = error != NoError;
    return error == NoError ? Platform::Success
                            : RemovalFailure(kind, Shown(path) + (kind == Kind::Folder ? "\\" : ""), error);
}

std::string FolderRemoval::Shown(const SystemPath& path) const {
    if (path.Text().size() <= m_topLength) {
        return m_shownFolder.substr(0, m_shownFolder.size() - 1);
    }
    std::string below;
    const bool isText = Platform::ToUtf8(path.Text().substr(m_topLength + 1), below) == NoError;
    return m_shownFolder + (isText ? below : "(a name without a UTF-8 form)");
}

} // namespace

ResultCode RemoveFolder(const std::string& path) {
    return RemoveFolder(path, Platform::SleepFor);
}

ResultCode RemoveFolder(const std::string& path, const RetryPause& pause) {
    bool isReported = false;
    const auto attempt = [&] {
        return ExceptionToResult([&]() -> ResultCode {
            std::string shownFolder = path;
            RETURN_IF_FAILED(EnsureTrailingFolderSeparator(shownFolder));
            SystemPath systemPath = Made(path);
            if (systemPath.Error() != NoError) {
                return "Removing folder failed! Failed to convert folder path from multi-byte to wide "
                       "string!";
            }
            if (systemPath.IsRoot()) {
                return RemovalFailure(Kind::Folder, shownFolder, RemoveEmptyFolder(systemPath));
            }
            return FolderRemoval(std::move(systemPath), std::move(shownFolder), pause, isReported).Run();
        });
    };
    // A deletion was repeated already; a listing or the memory may have failed just once.
    const ResultCode result = attempt();
    return result || isReported ? result : attempt();
}

} // namespace PlatformHelpers
