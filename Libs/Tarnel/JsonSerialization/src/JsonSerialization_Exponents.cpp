#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Exponents.h"

#include <algorithm>
#include <cstddef>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Blocks.h"

namespace JsonSerialization {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The digits of a negative exponent whose sign stands at that place, without leading zeros; none when that is
// no exponent's place.
std::string_view NegativeExponent(std::string_view text, std::size_t minus) {
    if (minus == 0 || (text[minus - 1] | 0x20) != 'e') {
        return {};
    }
    const auto first = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(minus) + 1, text.end(),
                                    [](char c) { return c != '0'; });
    return {first, std::find_if_not(first, text.end(), IsDigit)};
}

// Exponents of fewer digits are safe: no text has that many decimals.
constexpr std::size_t UnsafeExponentDigits = 9;

bool HasUnsafeExponentIn(std::string_view text, std::size_t begin, std::size_t end) {
    for (std::size_t at = begin; at < end; ++at) {
        if (text[at] == '-' && NegativeExponent(text, at).size() >= UnsafeExponentDigits) {
            return true;
        }
    }
    return false;
}

} // namespace

bool HasUnsafeExponent(std::string_view text) {
    std::size_t at = 0;
    for (; at + BlockSize <= text.size(); at += BlockSize) {
        if (BlockHolds(text.data() + at, '-') && HasUnsafeExponentIn(text, at, at + BlockSize)) {
            return true;
        }
    }
    return HasUnsafeExponentIn(text, at, text.size());
}

void TameExponents(std::string& text) {
    bool inString = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            inString = !inString;
        } else if (inString) {
            at += text[at] == '\\' ? 1u : 0u;
        } else if (text[at] == '-') {
            const std::string_view exponent = NegativeExponent(text, at);
            if (exponent.size() >= UnsafeExponentDigits) {
                const auto first = static_cast<std::size_t>(exponent.data() - text.data());
                text.replace(first, exponent.size(), std::string(exponent.size() - 4, '0') + "9999");
            }
        }
    }
}

} // namespace JsonSerialization
