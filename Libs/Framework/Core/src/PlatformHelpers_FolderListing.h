#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace PlatformHelpers {

// One pass over the entries of a folder, with the names as the system has them; "." and ".." are left out.
// What the accessors give is that of the last Next that returned true. One thread.
//
//   FolderListing listing(systemFolder); // with a trailing separator
//   while (listing.Next()) { ... listing.Name() ... }
//   if (listing.HasFailed()) { ... }
class FolderListing {
public:
    explicit FolderListing(const std::wstring& systemFolder);
    ~FolderListing();
    FolderListing(const FolderListing&) = delete; // it owns the search
    FolderListing& operator=(const FolderListing&) = delete;

    bool Next();

    // After Next has returned false: whether the folder could not be read, or not to its end.
    bool HasFailed() const;

    const wchar_t* Name() const;
    uint32_t Attributes() const;
    uint32_t ReparseTag() const; // the kind of a link; 0 for what is none
    uint64_t CreationTime() const;
    uint64_t LastAccessTime() const;
    uint64_t LastWriteTime() const;
    uint64_t Size() const;

private:
    struct Search;
    std::unique_ptr<Search> m_search;
};

} // namespace PlatformHelpers
