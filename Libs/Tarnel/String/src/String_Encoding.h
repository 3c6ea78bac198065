#pragma once

#include <cstdint>

namespace String {

// How the units of a text are to be read.
enum class Encoding : uint32_t { ASCII, UTF8, UTF16, UTF32, WIDE_CHAR };

// The character type that carries an encoding.
template <Encoding>
struct CharOf {
    using Type = char;
};
template <>
struct CharOf<Encoding::UTF16> {
    using Type = char16_t;
};
template <>
struct CharOf<Encoding::UTF32> {
    using Type = char32_t;
};
template <>
struct CharOf<Encoding::WIDE_CHAR> {
    using Type = wchar_t;
};

} // namespace String
