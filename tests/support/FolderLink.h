#pragma once

#include <filesystem>
#include <string>

namespace TestSupport {

// A symbolic link to a folder, deleted at the end. False if it could not be made: Windows allows links to
// administrators and in developer mode only. Wine can't make any, so there a program of its host does.
class FolderLink {
public:
    // target is relative to the link's folder. Both are UTF-8.
    FolderLink(const std::string& link, const std::string& target);
    ~FolderLink();
    FolderLink(const FolderLink&) = delete; // it owns the link
    FolderLink& operator=(const FolderLink&) = delete;

    explicit operator bool() const;

private:
    std::filesystem::path m_path;
};

} // namespace TestSupport
