#pragma once

#include <filesystem>
#include <string>

// What Wine can't do to a folder, a program of its host can; Windows needs none.
namespace TestSupport {

// A symbolic link for one test. Windows makes links for an administrator or in developer mode; a link that
// could not be made tests as false.
class Link {
public:
    // target is relative to the link's folder. Paths are UTF-8.
    Link(const std::string& link, const std::string& target, bool isFolder);
    ~Link();
    Link(const Link&) = delete; // it stands for what is on disk
    Link& operator=(const Link&) = delete;

    explicit operator bool() const { return m_isMade; }

private:
    std::filesystem::path m_path;
    bool m_isFolder;
    bool m_isMade = false;
};

// Gives or takes the folder's own read-only attribute, of which Wine changes only that of files.
[[nodiscard]] bool SetFolderReadOnly(const std::string& folder, bool isReadOnly);

} // namespace TestSupport
