#pragma once

#include <string>
#include <string_view>

// Paths for deletion, where the system must not read anything into a name. Internal to the helpers.
namespace PlatformHelpers {

// The absolute form that goes to the file system as it stands, without a trailing separator: C:/dumps/a.
// becomes \\?\C:\dumps\a. with its dot. No length limit binds it.
std::wstring ToLiteralPath(std::wstring widePath);

// Whether nothing stands above a path of that form: \\?\C:
bool IsDrive(std::wstring_view literalPath);

// Whether the path itself is a junction or a symbolic link to a folder.
bool IsFolderLink(const std::wstring& literalPath);

// A folder, to tell whether a path below it leads where it says. Windows opens links themselves when asked
// to, so there every path does. Compatibility layers may resolve links behind our back: then a call meant for
// the link would hit what it points to.
class Place {
public:
    // With a trailing separator.
    explicit Place(const std::wstring& literalFolder);

    // True also where the system gives no answer: what it can't open it can't change either.
    bool Holds(const std::wstring& literalPath) const;

private:
    std::size_t m_length;
    std::wstring m_openedFolder; // as the system calls it, with a trailing separator; empty when unknown
};

} // namespace PlatformHelpers
