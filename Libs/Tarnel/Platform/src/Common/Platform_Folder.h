#pragma once

#include <memory>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

// Folders, what is in them, and where a name really leads. As Platform_IO: no exceptions, no log lines.
namespace Platform {

// The same for all paths of one existing file or folder, through links, and for no other.
struct FileIdentity {
    uint64_t volume = 0;
    uint64_t index = 0;
    auto operator<=>(const FileIdentity&) const = default; // NOLINT(modernize-use-nullptr): no text of ours
};
[[nodiscard]] SystemError QueryIdentity(const SystemPath& path, FileIdentity& identity) noexcept;

// A junction or a symbolic link itself, whatever it leads to.
bool IsLink(const SystemPath& path) noexcept;

// An open folder, and the files in it that really are in it: what counts is the opened file, not its name.
// One thread. While it is open, others may rename or delete the folder, but on older systems it stays until
// this is gone.
class Folder {
public:
    // NotInside for a link.
    [[nodiscard]] SystemError Open(SystemPath path) noexcept;

    // Opens a file for reading by its path relative to the folder, with either separator. NotInside, and the
    // file is closed again, if a link is on the way or what was opened is no plain file. The name must be
    // checked already: no "..", no stream, no device. With Patience::WhileHeld it waits for a file that
    // others hold open.
    [[nodiscard]] SystemError OpenFile(std::string_view name, Patience patience, File& file) const noexcept;

    static constexpr SystemError NotInside = 0x20000004;

private:
    SystemPath m_path;
    KernelHandle m_handle;
};

// One pass over the entries of a folder without "." and "..". One thread.
//
//   FolderListing listing(path);
//   while (listing.Next()) { ... listing.Name() ... listing.Info() ... }
//   if (listing.Error() != NoError) { ... }
class FolderListing {
public:
    explicit FolderListing(const SystemPath& folder) noexcept;
    ~FolderListing();
    FolderListing(const FolderListing&) = delete; // it owns the search
    FolderListing& operator=(const FolderListing&) = delete;

    // The name and the info of an entry are good until the next call. False at the end, and after an error.
    [[nodiscard]] bool Next() noexcept;
    const SystemText& Name() const { return m_name; }
    const FileInfo& Info() const { return m_info; }

    SystemError Error() const { return m_error; }

private:
    struct Search;
    std::unique_ptr<Search> m_search;
    SystemText m_name;
    FileInfo m_info;
    SystemError m_error = NoError;
};

// Spares the passes over a folder in which nothing happens. Windows only. One thread.
class FolderChanges {
public:
    // True if the last pass left something to do, or if anything in the folder or below it came, went, was
    // written or got other attributes since the last call. Also if the system can't tell, and at least every
    // 16th time: some network drives report nothing, and a program may put another folder in its place. The
    // folder must be the same in each call.
    bool NeedPass(const std::string& folder) noexcept;

    // A pass that does not come to this left something to do.
    void EndPass(bool nothingLeft) { m_nothingLeft = nothingLeft; }

private:
    static constexpr int MostQuietCalls = 15;

    bool Any(const std::string& folder) noexcept;

    ChangeHandle m_notification;
    int m_quietCalls = 0; // in a row
    bool m_nothingLeft = false;
};

} // namespace Platform
