#include <algorithm>
#include <climits>

#include <windows.h>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Files.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace PlatformHelpers {

namespace {

// Characters before the first combining mark have nothing to compose, so the system need not be asked.
constexpr wchar_t FirstCombiningMark = 0x300;

constexpr int NormalizationAttempts = 8; // the system's estimate may fall short, though hardly more than once

bool IsPlainlyComposed(std::wstring_view text) {
    return std::ranges::all_of(text, [](wchar_t unit) { return unit < FirstCombiningMark; });
}

int Length(std::wstring_view text) {
    return static_cast<int>(text.size());
}

// What has no UTF-8 form is replaced.
std::string ToLogText(std::wstring_view wide) {
    std::string text(wide.size() * 3, '\0');
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), Length(wide), text.data(),
                                          static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<std::size_t>(std::max(bytes, 0)));
    return text;
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

ResultCode Compose(std::wstring_view text, std::wstring& normalized) {
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

} // namespace

ResultCode NormalizeWide(std::wstring_view text, std::wstring& normalized) {
    return ExceptionToResult([&]() -> ResultCode {
        if (text.size() > INT_MAX) { // the lengths of these calls are signed
            return NormalizationFailure({}, 0, ERROR_INVALID_PARAMETER);
        }
        if (IsPlainlyComposed(text) || IsNormalizedString(NormalizationC, text.data(), Length(text))) {
            normalized.assign(text);
            return Platform::Success;
        }
        return Compose(text, normalized);
    });
}

ResultCode Utf8ToWide(std::string_view text, std::wstring& wide) {
    wide.clear();
    std::wstring converted;
    const Platform::SystemError error = Platform::ToSystemText(text, converted);
    return error == Platform::NoError ? NormalizeWide(converted, wide) : ConversionFailure(error);
}

ResultCode WideToUtf8(std::wstring_view wide, std::string& text) {
    text.clear();
    std::wstring normalized;
    RETURN_IF_FAILED(NormalizeWide(wide, normalized));
    const Platform::SystemError error = Platform::ToUtf8(normalized, text);
    return error == Platform::NoError ? Platform::Success : ConversionFailure(error);
}

} // namespace PlatformHelpers
