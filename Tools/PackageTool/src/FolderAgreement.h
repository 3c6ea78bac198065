#pragma once

#include <string>
#include <string_view>

// Compares folders of a configuration before it is known where it will be used.
namespace FolderAgreement {

// What a relative folder is relative to.
enum class Base { ApplicationFolder, CurrentFolder };

// Equal texts for paths that lead to one folder, as far as their texts tell: separators, letter case of
// ASCII,
// "." and ".." make no difference. "dumps" in the application folder is "<application folder>/dumps".
std::string Comparable(std::string_view folder, Base base);

// The folder in which a process works: the given one, or, when that is empty, the one of that name in the
// application folder.
std::string WithDefault(const std::string& folder, const char* defaultName);

} // namespace FolderAgreement
