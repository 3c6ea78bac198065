#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Encoding.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Files.h"
#include "Libs/Framework/Core/src/PlatformHelpers_FolderListing.h"
#include "Libs/Framework/Core/src/PlatformHelpers_LiteralPath.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Retry.h"

namespace PlatformHelpers {

namespace {

struct Entry {
    std::wstring name;
    uint32_t attributes;
    uint32_t reparseTag;

    bool IsFolder() const { return (attributes & FolderAttribute) != 0; }
    bool IsReadOnly() const { return (attributes & ReadOnlyAttribute) != 0; }
    bool IsLink() const { return IsLinkEntry(attributes, reparseTag); }
};

// Calls remove(path), after clearing the read-only attribute where that is what stands in the way. The
// attribute calls act on a link itself.
template <class Remove>
RetryResult RemoveWithRetries(const std::wstring& path, Remove remove, const RetryPause& pause) {
    const auto attempt = [&] {
        uint32_t error = ErrorOfCall(remove(path.c_str()));
        const DWORD attributes = error == ERROR_ACCESS_DENIED ? GetFileAttributesW(path.c_str()) : 0;
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & ReadOnlyAttribute) != 0 &&
            SetFileAttributesW(path.c_str(), attributes & ~ReadOnlyAttribute)) {
            error = ErrorOfCall(remove(path.c_str()));
        }
        return error;
    };
    return RetryWhileDenied(attempt, pause);
}

// One deletion. Works on the system's own names, so that also those go which have no UTF-8 form or are not
// composed, and keeps its own stack of folders, so that their depth does not matter.
class FolderRemoval {
public:
    // The folder's path without a trailing separator, and how log lines show it, with one.
    FolderRemoval(std::wstring literalPath, std::string shownFolder, const RetryPause& pause)
        : m_path(std::move(literalPath)), m_topLength(m_path.size()), m_shownFolder(std::move(shownFolder)),
          m_place(m_path.substr(0, m_path.rfind(L'\\') + 1)), m_pause(pause) {}

    ResultCode Run();

private:
    ResultCode EnterFolder();
    ResultCode RemoveFiles(std::vector<Entry>& files);
    ResultCode RemoveFileHere();
    ResultCode RemoveFolderHere();

    void Descend(const std::wstring& name) { m_path.append(1, L'\\').append(name); }
    void Ascend() { m_path.resize(m_path.rfind(L'\\')); }
    std::string ShownPath() const {
        const std::size_t below = std::min(m_topLength + 1, m_path.size());
        return m_shownFolder + ToLogText(std::wstring_view(m_path).substr(below));
    }

    std::wstring m_path; // what is being worked on
    const std::size_t m_topLength;
    const std::string m_shownFolder;
    const Place m_place;
    const RetryPause& m_pause;
    std::vector<std::vector<Entry>>
        m_subFolders; // of each folder down to this one, those still to go, in reverse
};

ResultCode FolderRemoval::Run() {
    if (IsFolderLink(m_path)) {
        return RemoveFolderHere();
    }
    if (const ResultCode result = EnterFolder(); !result) {
        return result;
    }
    while (!m_subFolders.empty()) {
        ResultCode result;
        if (m_subFolders.back().empty()) {
            result = RemoveFolderHere();
            m_subFolders.pop_back();
            Ascend();
        } else {
            const Entry subFolder = std::move(m_subFolders.back().back());
            m_subFolders.back().pop_back();
            Descend(subFolder.name);
            if (subFolder.IsLink()) {
                result = RemoveFolderHere();
                Ascend();
            } else {
                result = EnterFolder();
            }
        }
        if (!result) {
            return result;
        }
    }
    return Platform::Success;
}

// Deletes the files of the folder and notes its sub-folders.
ResultCode FolderRemoval::EnterFolder() {
    std::vector<Entry> files;
    std::vector<Entry> subFolders;
    FolderListing listing(m_path + L"\\");
    while (listing.Next()) {
        Entry entry{listing.Name(), listing.Attributes(), listing.ReparseTag()};
        (entry.IsFolder() ? subFolders : files).push_back(std::move(entry));
    }
    if (listing.HasFailed()) {
        return "Failed to enumerate files";
    }
    std::ranges::reverse(subFolders);
    m_subFolders.push_back(std::move(subFolders));
    return RemoveFiles(files);
}

// The mark of a complete folder is a read-only file. All files are made writable before the first one goes,
// and those that were read-only go first: cut short at any moment, the folder either still holds everything
// or is not complete any more.
ResultCode FolderRemoval::RemoveFiles(std::vector<Entry>& files) {
    const auto others = std::stable_partition(
        files.begin(), files.end(), [](const Entry& file) { return file.IsReadOnly() && !file.IsLink(); });
    for (auto file = files.begin(); file != others; ++file) {
        Descend(file->name);
        ResultCode result;
        if (m_place.Holds(m_path)) {
            result = SetReadOnlyAt(m_path, ShownPath(), false, m_pause);
        }
        Ascend();
        if (!result) {
            return result;
        }
    }
    for (const Entry& file : files) {
        Descend(file.name);
        const ResultCode result = RemoveFileHere();
        Ascend();
        if (!result) {
            return result;
        }
    }
    return Platform::Success;
}

ResultCode FolderRemoval::RemoveFileHere() {
    if (!m_place.Holds(m_path)) {
        return FileRemovalFailure(ShownPath(), ERROR_SYMLINK_NOT_SUPPORTED);
    }
    const RetryResult retried = RemoveWithRetries(m_path, DeleteFileW, m_pause);
    return retried.outcome == RetryOutcome::Done ? Platform::Success
                                                 : FileRemovalFailure(ShownPath(), retried.error);
}

// An empty folder, or a link to one, which goes alone.
ResultCode FolderRemoval::RemoveFolderHere() {
    const std::string shown = m_path.size() == m_topLength ? m_shownFolder : ShownPath() + '\\';
    if (!m_place.Holds(m_path)) {
        return FolderRemovalFailure(shown, ERROR_SYMLINK_NOT_SUPPORTED);
    }
    const RetryResult retried = RemoveWithRetries(m_path, RemoveDirectoryW, m_pause);
    return retried.outcome == RetryOutcome::Done ? Platform::Success
                                                 : FolderRemovalFailure(shown, retried.error);
}

} // namespace

ResultCode RemoveFolder(const std::string& path) {
    return RemoveFolder(path, Sleep);
}

ResultCode RemoveFolder(const std::string& path, const RetryPause& pause) {
    std::string shownFolder = path;
    if (const ResultCode result = EnsureTrailingFolderSeparator(shownFolder); !result) {
        return result;
    }
    std::wstring widePath;
    if (!ToWidePath(shownFolder, widePath)) {
        return "Removing folder failed! Failed to convert folder path from multi-byte to wide string!";
    }
    std::wstring literalPath = ToLiteralPath(std::move(widePath));
    if (IsDrive(literalPath)) {
        return FolderRemovalFailure(shownFolder, ERROR_CURRENT_DIRECTORY);
    }
    return FolderRemoval(std::move(literalPath), std::move(shownFolder), pause).Run();
}

} // namespace PlatformHelpers
