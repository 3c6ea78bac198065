#pragma once

#include <filesystem>
#include <string>

namespace TestSupport {

// A symbolic link, deleted at the end. False if it could not be made: Windows allows links to
// administrators and in developer mode only. Wine can't make any, so there a program of its host does.
class Link {
public:
    // target is relative to the link's folder. Both are UTF-8.
    Link(const std::string& link, const std::string& target, bool isFolder = true);
    ~Link();
    Link(const Link&) = delete; // it owns the link
    Link& operator=(const Link&) = delete;

    explicit operator bool() const;

private:
    std::filesystem::path m_path;
    bool m_isFolder;
};

} // namespace TestSupport
