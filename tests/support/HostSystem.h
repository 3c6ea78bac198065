#pragma once

#include <filesystem>
#include <string>

// What Wine can't do to a folder is done by a program of the machine that Wine runs on.
namespace TestSupport {

// A symbolic link that is deleted at the end. False if it could not be made: Windows allows links to
// administrators and in developer mode only.
class Link {
public:
    // target is relative to the link's folder. Paths are UTF-8.
    Link(const std::string& link, const std::string& target, bool isFolder);
    ~Link();
    Link(const Link&) = delete; // it owns the link
    Link& operator=(const Link&) = delete;

    explicit operator bool() const { return m_isMade; }

private:
    std::filesystem::path m_path;
    bool m_isFolder;
    bool m_isMade = false;
};

// Sets the read-only attribute of the folder itself, which Wine does for files only. False if that failed.
[[nodiscard]] bool SetFolderReadOnly(const std::string& folder, bool isReadOnly);

} // namespace TestSupport
