#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

// Paths as text. Both "\" and "/" separate; a separator that is added is the system's own.
namespace FolderPath {

inline constexpr char Separator = static_cast<char>(Platform::PathSeparator);

constexpr bool IsSeparator(char character) {
    return character == '\\' || character == '/';
}

// The path of the name in the folder, whose trailing separator may be missing. On systems where "\" is an
// ordinary character, those in the name become "/".
std::string Join(std::string_view folder, std::string_view name);

// False if the path begins with a separator (a network path too) or a drive, even without a separator after
// it.
bool IsRelative(std::string_view path);

// A relative path, the empty one included, is taken relative to the base folder.
std::string Resolve(std::string_view path, std::string_view baseFolder);

// The last name of a path: C:\dumps\a and C:\dumps\a\ give a. None if the path ends in a drive, "." or "..",
// or holds only separators.
std::optional<std::string> LastComponent(std::string_view path);

} // namespace FolderPath
