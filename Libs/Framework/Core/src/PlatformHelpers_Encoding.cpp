#include "Libs/Framework/Core/src/PlatformHelpers_Encoding.h"

#include <algorithm>
#include <climits>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Windows/Platform_SystemPath.h"

namespace PlatformHelpers {

namespace {

// Text below the first combining mark is composed whatever its order, so nobody needs to ask the system.
constexpr wchar_t FirstCombiningMark = 0x300;

constexpr int NormalizationAttempts = 8; // the system's estimate may fall short, though hardly twice

bool IsPlainlyComposed(std::wstring_view text) {
    return std::ranges::all_of(text, [](wchar_t unit) { return unit < FirstCombiningMark; });
}

// The lengths of these calls are signed.
bool IsTooLong(std::size_t size) {
    return size > INT_MAX;
}

int Length(std::wstring_view text) {
    return static_cast<int>(text.size());
}

ResultCode NormalizationFailure(std::wstring_view text, int position, DWORD error) {
    if (error == ERROR_NO_UNICODE_TRANSLATION) {
        PLATFORM_LOG(
            Platform::ErrorLog,
            " Failed to normalize string \"%s\" because of invalid unicode found at input character %d. "
            "Error Code=0x%08X",
            ToLogText(text).c_str(), position, static_cast<unsigned>(error));
        return "Invalid unicode character found";
    }
    PLATFORM_LOG(Platform::ErrorLog, " Failed to normalize string \"%s\". Error Code=0x%08X",
                 ToLogText(text).c_str(), static_cast<unsigned>(error));
    return "Failed to normalize wide string";
}

} // namespace

ResultCode ConversionFailure(uint32_t systemError) {
    switch (systemError) {
    case ERROR_INVALID_PARAMETER:
        return "Error while converting MBCS to WCS: Any of the parameter values was invalid.";
    case ERROR_INSUFFICIENT_BUFFER:
        return "Error while converting MBCS to WCS: A supplied buffer size was not large enough, or it was "
               "incorrectly set to NULL.";
    case ERROR_INVALID_FLAGS:
        return "Error while converting MBCS to WCS: The values supplied for flags were not valid.";
    case ERROR_NO_UNICODE_TRANSLATION:
        return "Error while converting MBCS to WCS: Invalid Unicode was found in a string.";
    default:
        return "Unknown error while converting MBCS to WCS";
    }
}

ResultCode NormalizeWide(std::wstring_view text, std::wstring& normalized) {
    if (IsTooLong(text.size())) {
        return NormalizationFailure({}, 0, ERROR_INVALID_PARAMETER);
    }
    if (IsPlainlyComposed(text) || IsNormalizedString(NormalizationC, text.data(), Length(text))) {
        normalized.assign(text);
        return Platform::Success;
    }
    std::wstring composed;
    int room = NormalizeString(NormalizationC, text.data(), Length(text), nullptr, 0);
    for (int attempt = 0; attempt < NormalizationAttempts && room > 0; ++attempt) {
        composed.resize(static_cast<std::size_t>(room));
        SetLastError(ERROR_SUCCESS);
        const int length = NormalizeString(NormalizationC, text.data(), Length(text), composed.data(), room);
        const DWORD error = GetLastError();
        if (length > 0 || (length == 0 && error == ERROR_SUCCESS)) {
            composed.resize(static_cast<std::size_t>(length));
            normalized = std::move(composed);
            return Platform::Success;
        }
        if (error != ERROR_INSUFFICIENT_BUFFER) {
            return NormalizationFailure(text, -length, error);
        }
        room = std::max(-length, room + 1); // it says how much it wants
    }
    return NormalizationFailure(text, -std::min(room, 0), GetLastError());
}

ResultCode Utf8ToWide(std::string_view text, std::wstring& wide) {
    wide.clear();
    if (text.empty()) {
        return Platform::Success;
    }
    if (IsTooLong(text.size())) {
        return ConversionFailure(ERROR_INVALID_PARAMETER);
    }
    const int bytes = static_cast<int>(text.size());
    const int room = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, nullptr, 0);
    if (room <= 0) {
        return ConversionFailure(GetLastError());
    }
    std::wstring converted(static_cast<std::size_t>(room), L'\0');
    if (MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, converted.data(), room) <= 0) {
        return ConversionFailure(GetLastError());
    }
    return NormalizeWide(converted, wide);
}

ResultCode WideToUtf8(std::wstring_view wide, std::string& text) {
    text.clear();
    if (wide.empty()) {
        return Platform::Success;
    }
    std::wstring normalized;
    if (const ResultCode result = NormalizeWide(wide, normalized); !result) {
        return result;
    }
    const int units = Length(normalized);
    const int room = WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, normalized.data(), units, nullptr, 0,
                                         nullptr, nullptr);
    if (room <= 0) {
        return ConversionFailure(GetLastError());
    }
    text.resize(static_cast<std::size_t>(room));
    if (WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, normalized.data(), units, text.data(), room,
                            nullptr, nullptr) <= 0) {
        const DWORD error = GetLastError();
        text.clear();
        return ConversionFailure(error);
    }
    return Platform::Success;
}

ResultCode ToWidePath(const std::string& path, std::wstring& wide) {
    if (path.find('\0') != std::string::npos) {
        return ConversionFailure(ERROR_NO_UNICODE_TRANSLATION);
    }
    return Utf8ToWide(path, wide);
}

ResultCode ToSystemPath(const std::string& path, std::wstring& systemPath) {
    std::wstring wide;
    const ResultCode result = ToWidePath(path, wide);
    if (result) {
        systemPath = Platform::ToSystemPath(wide);
    }
    return result;
}

std::string ToLogText(std::wstring_view wide) {
    const int units = static_cast<int>(std::min<std::size_t>(wide.size(), INT_MAX));
    const int room = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(std::max(room, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, text.data(), room, nullptr, nullptr);
    return text;
}

} // namespace PlatformHelpers
