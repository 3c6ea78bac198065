#include "Libs/Tarnel/Platform/src/Common/Platform_Utf8.h"

#include <cstdint>

namespace Platform {
namespace {

constexpr char32_t FirstSurrogate = 0xD800;
constexpr char32_t FirstLowSurrogate = 0xDC00;
constexpr char32_t LastSurrogate = 0xDFFF;
constexpr char32_t LastCodePoint = 0x10FFFF;
constexpr bool WideIsUtf16 = sizeof(wchar_t) == 2;

// What a first byte says about its character. The second byte's range shuts out overlong forms, surrogates
// and values beyond Unicode.
struct Lead {
    std::size_t length = 0; // 0: no character starts so
    uint8_t secondMin = 0x80;
    uint8_t secondMax = 0xBF;
};

Lead LeadOf(uint8_t first) {
    if (first < 0x80) {
        return {1};
    }
    if (first < 0xC2 || first > 0xF4) {
        return {};
    }
    if (first < 0xE0) {
        return {2};
    }
    if (first < 0xF0) {
        return {3, static_cast<uint8_t>(first == 0xE0 ? 0xA0 : 0x80),
                static_cast<uint8_t>(first == 0xED ? 0x9F : 0xBF)};
    }
    return {4, static_cast<uint8_t>(first == 0xF0 ? 0x90 : 0x80),
            static_cast<uint8_t>(first == 0xF4 ? 0x8F : 0xBF)};
}

bool IsSurrogate(char32_t value) {
    return value >= FirstSurrogate && value <= LastSurrogate;
}

} // namespace

Utf8Step DecodeUtf8(std::string_view text, char32_t& codePoint, std::size_t& length) {
    const auto first = static_cast<uint8_t>(text[0]);
    const Lead lead = LeadOf(first);
    if (lead.length == 0) {
        return Utf8Step::Invalid;
    }
    char32_t value = lead.length == 1 ? first : first & (0x7Fu >> lead.length);
    for (std::size_t i = 1; i < lead.length; ++i) {
        if (i == text.size()) {
            return Utf8Step::Incomplete;
        }
        const auto byte = static_cast<uint8_t>(text[i]);
        const uint8_t min = i == 1 ? lead.secondMin : 0x80;
        const uint8_t max = i == 1 ? lead.secondMax : 0xBF;
        if (byte < min || byte > max) {
            return Utf8Step::Invalid;
        }
        value = (value << 6) | (byte & 0x3Fu);
    }
    codePoint = value;
    length = lead.length;
    return Utf8Step::Done;
}

std::size_t EncodeUtf8(char32_t codePoint, char* output) {
    if (codePoint < 0x80) {
        output[0] = static_cast<char>(codePoint);
        return 1;
    }
    const std::size_t length = codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
    for (std::size_t i = length - 1; i > 0; --i) {
        output[i] = static_cast<char>(0x80 | (codePoint & 0x3F));
        codePoint >>= 6;
    }
    const uint32_t mark = 0xF00u >> length; // the length's ones from the top of the byte down
    output[0] = static_cast<char>((mark & 0xFF) | codePoint);
    return length;
}

std::size_t EncodeWide(char32_t codePoint, wchar_t* output) {
    if (!WideIsUtf16 || codePoint < 0x10000) {
        output[0] = static_cast<wchar_t>(codePoint);
        return 1;
    }
    codePoint -= 0x10000;
    output[0] = static_cast<wchar_t>(FirstSurrogate + (codePoint >> 10));
    output[1] = static_cast<wchar_t>(FirstLowSurrogate + (codePoint & 0x3FF));
    return 2;
}

bool DecodeWide(std::wstring_view text, char32_t& codePoint, std::size_t& length) {
    const auto first = static_cast<char32_t>(text[0]);
    if (!IsSurrogate(first)) {
        codePoint = first;
        length = 1;
        return first <= LastCodePoint;
    }
    if (!WideIsUtf16 || first >= FirstLowSurrogate || text.size() < 2) {
        return false;
    }
    const auto second = static_cast<char32_t>(text[1]);
    if (second < FirstLowSurrogate || second > LastSurrogate) {
        return false;
    }
    codePoint = 0x10000 + ((first - FirstSurrogate) << 10) + (second - FirstLowSurrogate);
    length = 2;
    return true;
}

} // namespace Platform
