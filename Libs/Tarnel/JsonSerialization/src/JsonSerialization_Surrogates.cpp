#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Surrogates.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Blocks.h"

namespace JsonSerialization {

namespace {

constexpr std::size_t UnicodeEscapeSize = 6; // \uXXXX

// What the escape at that place stands for; 0 when it is none of four digits.
uint16_t UnicodeEscape(std::string_view text, std::size_t backslash) {
    const std::string_view digits = text.substr(std::min(backslash + 2, text.size()), 4);
    uint16_t unit = 0;
    if (digits.size() < 4 || text[backslash + 1] != 'u') {
        return 0;
    }
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
    return read.ptr == digits.data() + digits.size() ? unit : uint16_t{0};
}

// Texts with Unicode escapes are rare, other escapes are not: paths are full of them.
bool HoldsUnicodeEscape(std::string_view text) {
    std::size_t at = 0;
    for (; at + BlockSize < text.size(); at += BlockSize) {
        if (BlockHoldsPair(text.data() + at, '\\', 'u')) {
            return true;
        }
    }
    return text.find("\\u", at) != std::string_view::npos;
}

// The place of the first one's backslash from that place on, which is outside of any escape.
std::size_t FindLoneLowSurrogate(std::string_view text, std::size_t from) {
    bool isAfterHigh = false;
    std::size_t expected = from; // where the low half of the last high one would stand
    for (std::size_t at = text.find('\\', from); at != std::string_view::npos;
         at = text.find('\\', expected)) {
        const uint16_t unit = UnicodeEscape(text, at);
        const bool isPair = isAfterHigh && at == expected;
        if (unit >= 0xDC00 && unit <= 0xDFFF && !isPair) {
            return at;
        }
        isAfterHigh = unit >= 0xD800 && unit <= 0xDBFF;
        expected = at + (unit != 0 ? UnicodeEscapeSize : 2);
    }
    return std::string_view::npos;
}

} // namespace

bool HasLoneLowSurrogate(std::string_view text) {
    return HoldsUnicodeEscape(text) && FindLoneLowSurrogate(text, 0) != std::string_view::npos;
}

void BreakLoneLowSurrogates(std::string& text) {
    for (std::size_t at = FindLoneLowSurrogate(text, 0); at != std::string::npos;
         at = FindLoneLowSurrogate(text, at + UnicodeEscapeSize)) {
        text.replace(at + 2, 4, "D800");
    }
}

} // namespace JsonSerialization
