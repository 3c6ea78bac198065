#pragma once

#include <cstddef>

// Small helpers for wide text. A null pointer is a failed assertion; the result is then 0 or null.
namespace Platform {

// Units before the terminator.
std::size_t StringLength(const wchar_t* str);

// Copies count units; the ranges may overlap. Gives dest.
wchar_t* StringCopy(wchar_t* dest, const wchar_t* src, std::size_t count);

// The first unit of str that is one of chars; null when there is none.
const wchar_t* StringFindFirstOf(const wchar_t* str, const wchar_t* chars);

} // namespace Platform
