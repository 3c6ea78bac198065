#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"

#include <exception>

#include "Libs/Tarnel/Platform/src/Common/Platform_ConvertString.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Utf8.h"

namespace Platform {

EncodingOutcome Utf8ToWide(std::string_view text, std::wstring& wide) {
    switch (ConvertString(text, wide)) {
    case ConvertString_Done:
        return EncodingOutcome::Done;
    case ConvertString_Partial:
    case ConvertString_InvalidCharacter:
        return EncodingOutcome::InvalidCharacter;
    default:
        return EncodingOutcome::OtherFailure;
    }
}

EncodingOutcome WideToUtf8(std::wstring_view wide, std::string& text) {
    text.clear();
    try {
        while (!wide.empty()) {
            char32_t codePoint = 0;
            std::size_t units = 0;
            if (!DecodeWide(wide, codePoint, units)) {
                text.clear();
                return EncodingOutcome::InvalidCharacter;
            }
            char bytes[4];
            text.append(bytes, EncodeUtf8(codePoint, bytes));
            wide.remove_prefix(units);
        }
    } catch (const std::exception&) { // no memory
        text.clear();
        return EncodingOutcome::OtherFailure;
    }
    return EncodingOutcome::Done;
}

} // namespace Platform
