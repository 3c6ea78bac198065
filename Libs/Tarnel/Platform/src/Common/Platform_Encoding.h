#pragma once

#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

namespace Platform {

enum class EncodingOutcome { Done, InvalidCharacter, OtherFailure };

inline EncodingOutcome Utf8ToWide(std::string_view text, std::wstring& wide) {
    const auto result = ConvertString(text, wide);
    return result == ConvertString_Done           ? EncodingOutcome::Done
           : result == ConvertString_UnknownError ? EncodingOutcome::OtherFailure
                                                  : EncodingOutcome::InvalidCharacter;
}
inline EncodingOutcome WideToUtf8(std::wstring_view wide, std::string& text) {
    return ConvertString(wide, text) == ConvertString_Done ? EncodingOutcome::Done
                                                           : EncodingOutcome::InvalidCharacter;
}

} // namespace Platform
