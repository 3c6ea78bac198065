#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Exponents.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

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

// Looks at eight bytes at once; only false is certain.
bool MayHoldMinus(std::string_view text, std::size_t at) {
    constexpr uint64_t Ones = 0x0101010101010101;
    uint64_t eight = 0;
    if (text.size() - at < sizeof(eight)) {
        return true;
    }
    std::memcpy(&eight, text.data() + at, sizeof(eight));
    eight ^= Ones * '-';
    return ((eight - Ones) & ~eight & (Ones << 7)) != 0;
}

} // namespace

bool HasUnsafeExponent(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); at += sizeof(uint64_t)) {
        const std::size_t end = std::min(at + sizeof(uint64_t), text.size());
        if (MayHoldMinus(text, at) && HasUnsafeExponentIn(text, at, end)) {
            return true;
        }
    }
    return false;
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
