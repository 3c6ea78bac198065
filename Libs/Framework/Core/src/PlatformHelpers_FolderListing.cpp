#include "Libs/Framework/Core/src/PlatformHelpers_FolderListing.h"

#include <windows.h>

namespace PlatformHelpers {

namespace {

uint64_t Join(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

uint64_t ToNumber(const FILETIME& time) {
    return Join(time.dwHighDateTime, time.dwLowDateTime);
}

bool IsDots(const wchar_t* name) {
    return name[0] == L'.' && (name[1] == 0 || (name[1] == L'.' && name[2] == 0));
}

} // namespace

struct FolderListing::Search {
    HANDLE handle = INVALID_HANDLE_VALUE;
    bool isFirst = true;
    bool failed = false;
    WIN32_FIND_DATAW entry;
};

FolderListing::FolderListing(const std::wstring& systemFolder) : m_search(std::make_unique<Search>()) {
    m_search->handle = FindFirstFileExW((systemFolder + L"*").c_str(), FindExInfoBasic, &m_search->entry,
                                        FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    m_search->failed = m_search->handle == INVALID_HANDLE_VALUE;
}

FolderListing::~FolderListing() {
    if (m_search->handle != INVALID_HANDLE_VALUE) {
        FindClose(m_search->handle);
    }
}

bool FolderListing::Next() {
    Search& search = *m_search;
    if (search.failed) {
        return false;
    }
    while (search.isFirst || FindNextFileW(search.handle, &search.entry)) {
        search.isFirst = false;
        if (!IsDots(search.entry.cFileName)) {
            return true;
        }
    }
    // Any other end would hide entries.
    search.failed = GetLastError() != ERROR_NO_MORE_FILES;
    return false;
}

bool FolderListing::HasFailed() const {
    return m_search->failed;
}

const wchar_t* FolderListing::Name() const {
    return m_search->entry.cFileName;
}

uint32_t FolderListing::Attributes() const {
    return m_search->entry.dwFileAttributes;
}

uint32_t FolderListing::ReparseTag() const {
    return (Attributes() & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? m_search->entry.dwReserved0 : 0;
}

uint64_t FolderListing::CreationTime() const {
    return ToNumber(m_search->entry.ftCreationTime);
}

uint64_t FolderListing::LastAccessTime() const {
    return ToNumber(m_search->entry.ftLastAccessTime);
}

uint64_t FolderListing::LastWriteTime() const {
    return ToNumber(m_search->entry.ftLastWriteTime);
}

uint64_t FolderListing::Size() const {
    return Join(m_search->entry.nFileSizeHigh, m_search->entry.nFileSizeLow);
}

} // namespace PlatformHelpers
