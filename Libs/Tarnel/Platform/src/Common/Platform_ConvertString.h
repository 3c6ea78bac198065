#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// UTF-8 to wide text for readers that tell the reasons of a failure apart. Platform_Encoding.h is the simpler
// form for everybody else.
namespace Platform {

enum ConvertStringResult {
    ConvertString_Done,
    ConvertString_CalcLength,       // no output was given: the units were counted, nothing was written
    ConvertString_Partial,          // the output is full or the text ends inside a character
    ConvertString_InvalidCharacter, // ill-formed UTF-8
    ConvertString_InvalidArgument,  // a null text with a length, or a null output with a capacity
    ConvertString_UnknownError,     // no memory for the result
};

// Converts length bytes at text into at most capacity wide units at output. units receives the units written
// (or counted); after Partial and InvalidCharacter they stand for all that comes before the character that
// failed. No terminator is written. A null output with capacity 0 asks for the count alone.
[[nodiscard]] ConvertStringResult ConvertString(const char* text, std::size_t length, wchar_t* output,
                                                std::size_t capacity, std::size_t& units);

// The same into a string that grows as needed; never CalcLength. After anything but Done output is empty.
[[nodiscard]] ConvertStringResult ConvertString(std::string_view text, std::wstring& output);

} // namespace Platform
