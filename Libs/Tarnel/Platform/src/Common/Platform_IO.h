#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Handle.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Every call that takes a name of something on the disk is here. Paths are SystemPath, made from UTF-8 by
// passing a string. A failure is the system's number; nothing throws; nothing logs.
namespace Platform {

inline constexpr uint32_t ReadOnlyAttribute = 0x01;
inline constexpr uint32_t FolderAttribute = 0x10;
inline constexpr uint32_t ReparseAttribute = 0x400;

// What the system knows of a file or folder.
struct FileInfo {
    uint32_t attributes = 0;
    uint32_t reparseTag = 0;   // the kind of a link or placeholder, from a listing only; 0 for neither
    uint64_t creationTime = 0; // times count 100 ns since 1601
    uint64_t lastAccessTime = 0;
    uint64_t lastWriteTime = 0;
    uint64_t size = 0; // bytes

    bool IsFolder() const { return (attributes & FolderAttribute) != 0; }
    bool IsReadOnly() const { return (attributes & ReadOnlyAttribute) != 0; }

    // A junction or a symbolic link. A file that a cloud drive keeps elsewhere has the reparse attribute too,
    // but its tag lacks the bit of those that lead to another name. A layer that knows no tags marks nothing
    // but links.
    bool IsLink() const {
        constexpr uint32_t LeadsElsewhere = 0x20000000;
        return (attributes & ReparseAttribute) != 0 &&
               (reparseTag == 0 || (reparseTag & LeadsElsewhere) != 0);
    }
};

// Of the link itself if path is one.
[[nodiscard]] SystemError QueryInfo(const SystemPath& path, FileInfo& info) noexcept;
bool Exists(const SystemPath& path) noexcept; // of whatever kind; false too if the system can't tell

[[nodiscard]] SystemError SetAttributes(const SystemPath& path, uint32_t attributes) noexcept;

// Of a link, the link alone; where the system would follow it, they fail.
[[nodiscard]] SystemError RemoveFile(const SystemPath& path) noexcept;
[[nodiscard]] SystemError RemoveEmptyFolder(const SystemPath& path) noexcept;

// Success too if something of that name is there already.
[[nodiscard]] SystemError CreateOneFolder(const SystemPath& path) noexcept;

// Replaces a file at to. Both on one volume.
[[nodiscard]] SystemError RenameFile(const SystemPath& from, const SystemPath& to) noexcept;

// Creates one folder, or a folder with its parents; true too if it exists. The first part of a path (a drive,
// a share, the first name of a relative path) is never created.
[[nodiscard]] bool CreateOneDirectory(const char* path);
[[nodiscard]] bool CreateOneDirectory(const wchar_t* path);
[[nodiscard]] bool CreateDirectoryTree(const char* path);
[[nodiscard]] bool CreateDirectoryTree(const wchar_t* path);

// Access is denied, or another program has the file open: a virus scanner, an indexer or a backup holds files
// for a moment.
bool IsHeld(SystemError error);

// No file of that name is there: not an error of the disk, the network or the memory, after which one may be.
bool IsMissing(SystemError error);

// Ten attempts while it is held, with pauses of 2, 4, 8 ... 512 ms between them. pause waits for that time,
// or less. Any other failure but a missing file gets a second attempt at once: a disk, a network or the
// memory may fail once.
using RetryPause = std::function<void(uint32_t milliseconds)>;
inline constexpr uint32_t LastRetryPause = 512;
inline constexpr uint32_t AllRetryPauses = 2 * LastRetryPause - 2; // their sum

void SleepFor(uint32_t milliseconds);

template <class Attempt> // returns a SystemError
SystemError RetryWhileHeld(Attempt attempt, const RetryPause& pause = SleepFor) {
    SystemError error = attempt();
    if (error != NoError && !IsHeld(error) && !IsMissing(error)) {
        error = attempt();
    }
    for (uint32_t delay = 2; IsHeld(error) && delay <= LastRetryPause; delay *= 2) {
        pause(delay);
        error = attempt();
    }
    return error;
}

enum FileAccess : uint32_t {
    FileRead = 1,
    FileWrite = 2,
    FileCreateAndTruncate = 4, // else an existing file is opened
    FileRandomAccess = 8,      // else sequential access is announced
    FileCreateNew = 16,        // fails if something of that name exists, even a link that leads nowhere
};

enum FileShare : uint32_t { ShareRead = 1, ShareWrite = 2, ShareDelete = 4, ShareAll = 7 };

// How long an opening waits for a file that is held: not at all, or through RetryWhileHeld.
enum class Patience { None, WhileHeld };

// An open file; closes itself. One thread at a time.
class File {
public:
    // Folders don't open. Errors of its own beside the system's: AlreadyOpen, NoAccess, NoSize.
    [[nodiscard]] SystemError Open(const SystemPath& path, uint32_t access, uint32_t share = ShareRead,
                                   Patience patience = Patience::None) noexcept;

    static constexpr SystemError AlreadyOpen = 0x20000001;
    static constexpr SystemError NoAccess = 0x20000002; // neither FileRead nor FileWrite was asked for
    static constexpr SystemError NoSize = 0x20000003;

    // In bytes, at opening.
    uint64_t GetSize() const { return m_size; }

    // Fills the buffer from offset on as far as the file goes; less than its size is the end of the file.
    [[nodiscard]] SystemError Read(uint64_t offset, std::span<uint8_t> buffer, std::size_t& count) noexcept;

    // Writes everything from offset on. After a failure a part may be written.
    [[nodiscard]] SystemError Write(uint64_t offset, std::span<const uint8_t> bytes) noexcept;

    // The bytes are on the medium afterwards.
    [[nodiscard]] SystemError Flush() noexcept;

    // False if the system reports a late write error. Nothing open is a failed assertion.
    [[nodiscard]] bool Close();

    NativeHandle Get() const { return m_handle.Get(); }

    // For a file that stays open until the process ends.
    NativeHandle Release() { return m_handle.Release(); }

private:
    friend class Folder;

    KernelHandle m_handle;
    uint64_t m_size = 0;
};

// Opens a file as it is, or makes an empty one. Others may read, write and delete it.
[[nodiscard]] SystemError OpenOrCreate(File& file, const SystemPath& path, uint32_t access,
                                       Patience patience = Patience::None) noexcept;

// Raises the assertion that belongs to an error of File::Open, if any. Apart from Open, for callers that must
// not report under a lock.
void ReportOpening(SystemError error);

// Any number of threads may write to one file at a time.
[[nodiscard]] bool WriteFileAt(NativeHandle file, uint64_t offset, const void* data, uint32_t length);

// What the C runtime's errno would be.
int ErrnoOf(SystemError error);

// Windows only. The version resource of a program: its size in bytes, 0 for none, and its bytes.
uint32_t VersionResourceSize(const SystemPath& path);
[[nodiscard]] bool ReadVersionResource(const SystemPath& path, std::span<uint8_t> block);

// Windows only. The user's Documents, created if missing; the system's answer is an HRESULT. Throws
// std::bad_alloc.
uint32_t FindDocumentsFolder(SystemText& folder);

// Now, as a file time. The precise one: the other moves in steps of up to 16 ms and can be earlier
// than the creation of a folder.
uint64_t PreciseSystemTime();

} // namespace Platform
