#pragma once

#include <string>
#include <string_view>

// The few file calls of the crash handler. Paths are UTF-8, as the program's manifest makes the narrow calls
// speak it.
namespace SampleGame {

// Creates the folder and its parents; true also when it exists already.
bool MakeFolders(const std::string& folder);

// Writes the whole file; false when any byte did not arrive, for example on a full disk.
bool WriteWholeFile(const std::string& path, std::string_view content);

bool MakeReadOnly(const std::string& path);

} // namespace SampleGame
