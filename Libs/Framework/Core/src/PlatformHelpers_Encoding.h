#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// What the helpers share beneath the conversions of PlatformHelpers.h.
namespace PlatformHelpers {

// The failure that a system error of a conversion stands for, either way.
ResultCode ConversionFailure(uint32_t systemError);

// Utf8ToWide for paths: refuses a NUL inside, behind which the system would not look.
ResultCode ToWidePath(const std::string& path, std::wstring& wide);

// The same in the form that the system's calls take, long paths included.
ResultCode ToSystemPath(const std::string& path, std::wstring& systemPath);

// For log lines: what has no UTF-8 form is replaced, nothing is normalised.
std::string ToLogText(std::wstring_view wide);

} // namespace PlatformHelpers
