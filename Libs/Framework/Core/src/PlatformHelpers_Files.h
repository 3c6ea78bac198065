#pragma once

#include <cstdint>
#include <string>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The retrying file calls of PlatformHelpers.h for a path that is in the system's form already. The second
// argument is the path as log lines show it.
namespace PlatformHelpers {

ResultCode RemoveFileAt(const std::wstring& systemPath, const std::string& shownPath);
ResultCode SetReadOnlyAt(const std::wstring& systemPath, const std::string& shownPath, bool readOnly,
                         const RetryPause& pause);

// Log line and result of a failed deletion, for callers that make the system call themselves.
ResultCode FileRemovalFailure(const std::string& shownPath, uint32_t systemError);
ResultCode FolderRemovalFailure(const std::string& shownPath, uint32_t systemError);

// The last error of a call that failed, never 0. 0 for one that succeeded.
uint32_t ErrorOfCall(bool succeeded);

} // namespace PlatformHelpers
