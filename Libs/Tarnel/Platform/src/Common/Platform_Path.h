#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The one way from a UTF-8 path to the system. Nothing here throws; any thread may call.
namespace Platform {

// The number that the system gives for a failed call: GetLastError's, or errno's. 0 is success.
using SystemError = uint32_t;
inline constexpr SystemError NoError = 0;

#if defined(_WIN32)
using SystemText = std::wstring; // UTF-16
inline constexpr SystemText::value_type PathSeparator = L'\\';
inline constexpr SystemError NotText = 1113; // ERROR_NO_UNICODE_TRANSLATION
inline constexpr SystemError NoMemory = 8;   // ERROR_NOT_ENOUGH_MEMORY
#else
using SystemText = std::string; // UTF-8
inline constexpr SystemText::value_type PathSeparator = '/';
inline constexpr SystemError NotText = 84;  // EILSEQ
inline constexpr SystemError NoMemory = 12; // ENOMEM
#endif

// A path in the form that the system takes literally: names are never normalised, shortened or
// stripped, and no length limit but the system's own applies. On Windows it is absolute and begins with
// "\\?\", separators are "\", and "." and ".." are resolved:
//
//   C:/dumps/./a.         \\?\C:\dumps\a.
//   dumps\..\x            \\?\C:\current folder\x
//   //server/share/dumps  \\?\UNC\server\share\dumps
//
// Elsewhere the bytes stay as they are. Every call that takes a name takes a SystemPath, so that no name
// reaches the system in another way. Calls with an empty path fail.
class SystemPath {
public:
    SystemPath() = default;

    explicit(false) SystemPath(std::string_view utf8) noexcept;
    explicit(false) SystemPath(const std::string& utf8) noexcept : SystemPath(std::string_view(utf8)) {}
    explicit(false) SystemPath(const char* utf8) noexcept : SystemPath(std::string_view(utf8)) {}
    explicit(false) SystemPath(std::wstring_view wide) noexcept;

    SystemPath(SystemPath&&) noexcept = default; // no copies: they could run out of memory
    SystemPath& operator=(SystemPath&&) noexcept = default;

    // NotText for ill-formed text and for a NUL inside, or NoMemory. The path is empty then.
    SystemError Error() const { return m_error; }

    // The entry of that name in this folder; the name comes from the system.
    SystemPath Below(const SystemText& name) const noexcept;

    // The path of a UTF-8 name relative to this folder, with either separator. ".." leads no further up than
    // to the folder itself.
    SystemPath Within(std::string_view relative) const noexcept;

    // The folder that holds this; a root for a root.
    SystemPath Parent() const noexcept;

    // Nothing is above: a drive, a share, "/". True for an empty path too.
    bool IsRoot() const { return m_text.size() <= m_rootLength; }

    const SystemText& Text() const { return m_text; }
    const SystemText::value_type* Get() const { return m_text.c_str(); }

private:
    template <class Change>
    SystemPath Changed(Change change) const noexcept;
    void Set(SystemText text); // resolves

    SystemText m_text;            // no separator at its end, except a root's
    std::size_t m_rootLength = 0; // with its separator
    SystemError m_error = NoError;
};

// UTF-8 to the system's text and back. NotText if there is no such form (ill-formed text, a lone surrogate).
[[nodiscard]] SystemError ToSystemText(std::string_view utf8, SystemText& text) noexcept;
[[nodiscard]] SystemError ToUtf8(const SystemText& text, std::string& utf8) noexcept;

// The absolute path without "." and "..", for reading its names. The path itself if the system can't tell.
std::string FullPath(const std::string& path);

// The system's half of SystemPath:

// Gives path the form of SystemPath and returns the length of its root. Throws if there is no memory.
std::size_t ResolvePath(SystemText& path);

// Appends the names of relative to folder, without empty ones and "."; ".." removes the last name that it
// appended.
void AppendNames(SystemText& folder, std::basic_string_view<SystemText::value_type> relative);

// The program's own file. Empty if the system can't tell.
std::string OwnProgramPath() noexcept;

} // namespace Platform
