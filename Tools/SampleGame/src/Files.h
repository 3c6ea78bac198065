#pragma once

#include <string>
#include <string_view>

// The few system calls of a crash handler that take or give paths. Narrow texts are UTF-8.
namespace SampleGame {

std::wstring Wide(std::string_view text);
std::string Narrow(std::wstring_view text);

// Creates the folder and its parents; true also if it exists.
bool MakeFolders(const std::string& folder);

// A file to write, empty; null on failure.
void* CreateEmptyFile(const std::string& path);

// Closes a written file once its bytes are on the disk: after a power cut, a submission that is marked as
// complete must not hold empty files.
bool CloseFlushed(void* file);

// False if any byte did not arrive, for example on a full disk.
bool WriteWholeFile(const std::string& path, std::string_view content);

bool MakeReadOnly(const std::string& path);

} // namespace SampleGame
