#pragma once

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

} // namespace String
