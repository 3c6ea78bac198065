#pragma once

#include <optional>
#include <string>
#include <string_view>

// Paths as text. Both "\" and "/" separate; what is added is the system's own separator.
namespace FolderPath {

#if defined(_WIN32)
inline constexpr char Separator = '\\';
#else
inline constexpr char Separator = '/';
#endif

constexpr bool IsSeparator(char character) {
    return character == '\\' || character == '/';
}

// The name inside the folder, whose trailing separator may be missing. Separators in the name become the
// system's own where "\" is a character like any other.
std::string Join(std::string_view folder, std::string_view name);

// False for a leading separator (a network path too) and for a drive, also without a separator after it.
bool IsRelative(std::string_view path);

// A relative path, the empty one included, is taken relative to the base folder.
std::string Resolve(std::string_view path, std::string_view baseFolder);

// The name of the last folder or file of a path: C:\dumps\a and C:\dumps\a\ give a. None for a path that ends
// in a drive, "." or "..", or holds nothing but separators.
std::optional<std::string> LastComponent(std::string_view path);

} // namespace FolderPath
