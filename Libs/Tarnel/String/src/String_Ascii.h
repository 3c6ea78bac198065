#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace String {

// Only A to Z change, whatever the language: names of the protocol and of files, not words.
constexpr char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = LowerAscii(c);
    }
    return lower;
}

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool IsLetter(char c) {
    return LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z';
}
constexpr bool IsAlphanumeric(char c) {
    return IsDigit(c) || IsLetter(c);
}

// Whether the text has 1 to longest characters, all of them accepted.
template <class Accepts>
bool AllOf(std::string_view text, std::size_t longest, Accepts accepts) {
    return !text.empty() && text.size() <= longest && std::ranges::all_of(text, accepts);
}

} // namespace String
