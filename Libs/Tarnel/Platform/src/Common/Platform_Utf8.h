#pragma once

#include <cstddef>
#include <string_view>

// One character at a time, strict: no overlong forms, no surrogates, nothing above U+10FFFF.
namespace Platform {

enum class Utf8Step {
    Done,
    Incomplete, // the text ends inside a character that is well-formed so far
    Invalid,
};

// Reads the character at the start of text, which is not empty, into codePoint and its bytes into length.
// Anything but Done leaves both alone.
[[nodiscard]] Utf8Step DecodeUtf8(std::string_view text, char32_t& codePoint, std::size_t& length);

// Writes codePoint, a valid one, to output (at least 4 bytes) and returns the bytes written.
std::size_t EncodeUtf8(char32_t codePoint, char* output);

// Writes codePoint in the system's wide form (at least 2 units) and returns the units written.
std::size_t EncodeWide(char32_t codePoint, wchar_t* output);

// Reads the character at the start of text, which is not empty. False for a lone surrogate or a value beyond
// Unicode.
[[nodiscard]] bool DecodeWide(std::wstring_view text, char32_t& codePoint, std::size_t& length);

} // namespace Platform
