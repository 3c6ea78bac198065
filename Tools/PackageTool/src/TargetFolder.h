#pragma once

#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Makes the folder that --to names, with its parents. The agent's own call takes the first part of a path for
// a drive and does not make it; here a/b is a path below the current folder.
ResultCode EnsureTargetFolder(const std::string& folder);
