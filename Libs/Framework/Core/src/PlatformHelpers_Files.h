#pragma once

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

// What the helpers share. shownPath is the path as log lines show it.
namespace PlatformHelpers {

// The failure for a text or a path that can't be converted.
ResultCode ConversionFailure(Platform::SystemError error);

enum class Kind { File, Folder };

ResultCode SetReadOnly(const Platform::SystemPath& path, const std::string& shownPath, bool readOnly,
                       const RetryPause& pause);

// Logs the failure and returns the result that belongs to it.
ResultCode RemovalFailure(Kind kind, const std::string& shownPath, Platform::SystemError error);

} // namespace PlatformHelpers
