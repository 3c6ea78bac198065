#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// UTF-8 to the system's wide text and back, and small helpers for wide text.
namespace Platform {

enum ConvertStringResult {
    ConvertString_Done,
    ConvertString_CalcLength,       // only the length was asked for; not given by the functions below
    ConvertString_Partial,          // the text ends inside a character
    ConvertString_InvalidCharacter, // ill-formed text
    ConvertString_InvalidArgument,  // a null text with a length
    ConvertString_UnknownError,     // no memory for the result
};

// Strict: no overlong forms, no lone surrogates, nothing above U+10FFFF; nothing is replaced or normalised.
// After anything but Done output is empty. Never throws.
[[nodiscard]] ConvertStringResult ConvertString(std::string_view text, std::wstring& output) noexcept;
[[nodiscard]] ConvertStringResult ConvertString(std::wstring_view text, std::string& output) noexcept;

// The character at the start of text, which is not empty. Anything but Done leaves both results alone.
[[nodiscard]] ConvertStringResult DecodeUtf8(std::string_view text, char32_t& codePoint, std::size_t& length);

// Of the functions below: a null pointer is a failed assertion, and the result is 0 or null.

// Units before the terminator.
std::size_t StringLength(const wchar_t* str);

// Copies count units; the ranges may overlap. Returns dest.
wchar_t* StringCopy(wchar_t* dest, const wchar_t* src, std::size_t count);

// The first unit of str that is one of chars; null if there is none.
const wchar_t* StringFindFirstOf(const wchar_t* str, const wchar_t* chars);

} // namespace Platform
