#pragma once

#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The folder that --to names, and putting new files into it in place of old ones.
namespace Target {

// Creates the folder and its parents. A relative path is below the current folder.
ResultCode EnsureFolder(const std::string& folder);

// A path in folder that no other run and no package uses. Nothing is created.
std::string TemporaryPath(const std::string& folder);

// Moves the complete new file to path. The old file or link there is replaced in one step and stays if that
// fails; a folder there is never replaced. Both are on one volume.
ResultCode Replace(const std::string& newFile, const std::string& path);

} // namespace Target
