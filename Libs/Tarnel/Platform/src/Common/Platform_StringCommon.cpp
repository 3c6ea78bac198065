#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

#include <cstdint>
#include <cwchar>
#include <exception>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Platform {
namespace {

constexpr char32_t FirstSurrogate = 0xD800;
constexpr char32_t FirstLowSurrogate = 0xDC00;
constexpr char32_t LastSurrogate = 0xDFFF;
constexpr char32_t LastCodePoint = 0x10FFFF;
constexpr bool WideIsUtf16 = sizeof(wchar_t) == 2;

struct Character {
    char32_t codePoint;
    std::size_t length; // of its encoded form
};

// Bytes of the character that starts with first; 0 if none does.
std::size_t Utf8Length(uint8_t first) {
    return first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
}

// Whether the first two bytes can't be completed: an overlong form, a surrogate or a value beyond Unicode.
bool IsBadStart(std::size_t length, char32_t bits) {
    return (length == 3 && (bits < 0x20 || (bits >= 0x360 && bits <= 0x37F))) ||
           (length == 4 && (bits < 0x10 || bits > 0x10F));
}

ConvertStringResult Decode(std::string_view text, Character& character) {
    return DecodeUtf8(text, character.codePoint, character.length);
}

ConvertStringResult Decode(std::wstring_view text, Character& character) {
    const auto first = static_cast<char32_t>(text[0]);
    character = {first, 1};
    if (first < FirstSurrogate || (first > LastSurrogate && first <= LastCodePoint)) {
        return ConvertString_Done;
    }
    const char32_t second = WideIsUtf16 && text.size() > 1 ? static_cast<char32_t>(text[1]) : 0;
    if (first >= FirstLowSurrogate || second < FirstLowSurrogate || second > LastSurrogate) {
        return ConvertString_InvalidCharacter;
    }
    character = {0x10000 + ((first - FirstSurrogate) << 10) + (second - FirstLowSurrogate), 2};
    return ConvertString_Done;
}

void Append(std::wstring& output, char32_t codePoint) {
    if (WideIsUtf16 && codePoint >= 0x10000) {
        output.push_back(static_cast<wchar_t>(FirstSurrogate + ((codePoint - 0x10000) >> 10)));
        codePoint = FirstLowSurrogate + ((codePoint - 0x10000) & 0x3FF);
    }
    output.push_back(static_cast<wchar_t>(codePoint));
}

void Append(std::string& output, char32_t codePoint) {
    if (codePoint < 0x80) {
        output.push_back(static_cast<char>(codePoint));
        return;
    }
    const unsigned following = codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3;
    const char32_t mark = (0xF00u >> (following + 1)) & 0xFF; // as many ones as bytes, from the top down
    output.push_back(static_cast<char>(mark | codePoint >> (6 * following)));
    for (unsigned i = following; i > 0; --i) {
        output.push_back(static_cast<char>(0x80 | (codePoint >> (6 * (i - 1)) & 0x3F)));
    }
}

template <class From, class To>
ConvertStringResult Convert(std::basic_string_view<From> text, std::basic_string<To>& output) noexcept try {
    output.clear();
    if (!text.data() && !text.empty()) {
        return ConvertString_InvalidArgument;
    }
    output.reserve(text.size());
    while (!text.empty()) {
        Character character;
        if (const ConvertStringResult result = Decode(text, character); result != ConvertString_Done) {
            output.clear();
            return result;
        }
        Append(output, character.codePoint);
        text.remove_prefix(character.length);
    }
    return ConvertString_Done;
} catch (const std::exception&) { // no memory
    output.clear();
    return ConvertString_UnknownError;
}

} // namespace

ConvertStringResult DecodeUtf8(std::string_view text, char32_t& codePoint, std::size_t& length) {
    const auto first = static_cast<uint8_t>(text[0]);
    const std::size_t wanted = Utf8Length(first);
    if (wanted == 0) {
        return ConvertString_InvalidCharacter;
    }
    char32_t bits = wanted == 1 ? first : first & (0x7Fu >> wanted);
    for (std::size_t i = 1; i < wanted; ++i) {
        if (i == text.size()) {
            return ConvertString_Partial;
        }
        const auto byte = static_cast<uint8_t>(text[i]);
        bits = bits << 6 | (byte & 0x3Fu);
        if ((byte & 0xC0) != 0x80 || (i == 1 && IsBadStart(wanted, bits))) {
            return ConvertString_InvalidCharacter;
        }
    }
    codePoint = bits;
    length = wanted;
    return ConvertString_Done;
}

ConvertStringResult ConvertString(std::string_view text, std::wstring& output) noexcept {
    return Convert(text, output);
}

ConvertStringResult ConvertString(std::wstring_view text, std::string& output) noexcept {
    return Convert(text, output);
}

std::size_t StringLength(const wchar_t* str) {
    PLATFORM_ASSERT(str);
    return str ? std::wcslen(str) : 0;
}

wchar_t* StringCopy(wchar_t* dest, const wchar_t* src, std::size_t count) {
    PLATFORM_ASSERT(dest);
    PLATFORM_ASSERT(src);
    if (!dest || !src) {
        return nullptr;
    }
    return std::wmemmove(dest, src, count);
}

const wchar_t* StringFindFirstOf(const wchar_t* str, const wchar_t* chars) {
    PLATFORM_ASSERT(str);
    PLATFORM_ASSERT(chars);
    if (!str || !chars) {
        return nullptr;
    }
    return std::wcspbrk(str, chars);
}

} // namespace Platform
