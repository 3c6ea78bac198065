#include "Libs/Tarnel/Platform/src/Common/Platform_ConvertString.h"

#include <exception>

#include "Libs/Tarnel/Platform/src/Common/Platform_Utf8.h"

namespace Platform {

ConvertStringResult ConvertString(const char* text, std::size_t length, wchar_t* output, std::size_t capacity,
                                  std::size_t& units) {
    units = 0;
    if ((!text && length != 0) || (!output && capacity != 0)) {
        return ConvertString_InvalidArgument;
    }
    std::string_view rest(text, length);
    while (!rest.empty()) {
        char32_t codePoint = 0;
        std::size_t bytes = 0;
        const Utf8Step step = DecodeUtf8(rest, codePoint, bytes);
        if (step != Utf8Step::Done) {
            return step == Utf8Step::Incomplete ? ConvertString_Partial : ConvertString_InvalidCharacter;
        }
        wchar_t character[2];
        const std::size_t count = EncodeWide(codePoint, character);
        if (output) {
            if (capacity - units < count) {
                return ConvertString_Partial;
            }
            for (std::size_t i = 0; i < count; ++i) {
                output[units + i] = character[i];
            }
        }
        units += count;
        rest.remove_prefix(bytes);
    }
    return output ? ConvertString_Done : ConvertString_CalcLength;
}

ConvertStringResult ConvertString(std::string_view text, std::wstring& output) {
    output.clear();
    if (!text.data() && !text.empty()) {
        return ConvertString_InvalidArgument;
    }
    try {
        output.resize(text.size()); // no character takes more wide units than bytes
    } catch (const std::exception&) {
        return ConvertString_UnknownError;
    }
    std::size_t units = 0;
    const ConvertStringResult result =
        ConvertString(text.data(), text.size(), output.data(), output.size(), units);
    output.resize(result == ConvertString_Done ? units : 0);
    return result;
}

} // namespace Platform
